#include "App/CustomizationManager.h"

#include "App/ILinksManager.h"

#include <QCoreApplication>
#include <QVariant>

namespace Tavrin {
namespace App {

CustomizationManager::CustomizationManager(ProductDescription description, const QString& locale,
                                           std::shared_ptr<ILinksOpener> opener,
                                           std::shared_ptr<ILinksGenerator> generator)
    : m_description(std::move(description))
    , m_locale(locale)
    , m_opener(std::move(opener))
    , m_generator(std::move(generator))
{
}

CustomizationManager::~CustomizationManager() = default;

void CustomizationManager::apply(QObject* object)
{
    if (!object)
        return;
    if (auto* application = qobject_cast<QCoreApplication*>(object)) {
        QCoreApplication::setOrganizationName(m_description.organizationPresentableName);
        QCoreApplication::setOrganizationDomain(m_description.organizationDomainName);
        QCoreApplication::setApplicationName(m_description.applicationName);
        if (!m_description.productVersion.isEmpty())
            QCoreApplication::setApplicationVersion(m_description.productVersion);
        Q_UNUSED(application)
        return;
    }
    // Through the property system, so this library needs no widgets of its own.
    if (object->isWidgetType() && !object->parent() && object->property("windowTitle").toString().isEmpty())
        object->setProperty("windowTitle", QStringLiteral("%1 %2").arg(m_description.organizationPresentableName,
                                                                     m_description.productNameFor(m_locale)));
}

std::string CustomizationManager::organizationId() const
{
    return m_description.organizationId.toStdString();
}

std::string CustomizationManager::organizationPresentableName() const
{
    return m_description.organizationPresentableName.toStdString();
}

std::string CustomizationManager::organizationDomainName() const
{
    return m_description.organizationDomainName.toStdString();
}

std::string CustomizationManager::productName() const
{
    return m_description.productName.toStdString();
}

std::string CustomizationManager::productNameLocalized() const
{
    return m_description.productNameFor(m_locale).toStdString();
}

std::string CustomizationManager::applicationName() const
{
    return m_description.applicationName.toStdString();
}

std::string CustomizationManager::productId() const
{
    return m_description.productId.toStdString();
}

std::string CustomizationManager::singleInstanceKey() const
{
    return m_description.singleInstanceKey.toStdString();
}

std::shared_ptr<ILinksOpener> CustomizationManager::linksOpener() const
{
    return m_opener;
}

std::shared_ptr<ILinksGenerator> CustomizationManager::linksGenerator() const
{
    return m_generator;
}

} // namespace App
} // namespace Tavrin
