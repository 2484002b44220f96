#include "Customization.h"

#include <App/ICustomizationManager.h>
#include <App/ILaunchTypeProcessor.h>
#include <App/ILinksManager.h>
#include <App/ILookAndFeelManager.h>
#include <App/ServiceRegistry.h>
#include <Util/HTML.h>

#include <QCoreApplication>
#include <QLayout>
#include <QMap>
#include <QWidget>

#include <boost/any.hpp>
#include <glog/logging.h>

#include <mutex>

namespace Customization {
namespace {
using Tavrin::App::ServiceRegistry;

std::weak_ptr<Tavrin::App::ILookAndFeelManager>& lookAndFeelPointer()
{
    static std::weak_ptr<Tavrin::App::ILookAndFeelManager> pointer;
    return pointer;
}

// Each call takes its manager anew and holds it only for its own duration, so a host
// may replace a manager at any time. A host that forgot to register one gets an error
// line and empty answers instead of a crash somewhere in a dialog.
template <class Interface>
std::shared_ptr<Interface> service(const char* name)
{
    auto manager = ServiceRegistry::instance().get<Interface>();
    if (!manager)
        LOG(ERROR) << "No " << name << " is registered in the service registry";
    return manager;
}
std::shared_ptr<Tavrin::App::ICustomizationManager> customization()
{
    return service<Tavrin::App::ICustomizationManager>("customization manager");
}
std::shared_ptr<Tavrin::App::ILinksManager> links()
{
    return service<Tavrin::App::ILinksManager>("links manager");
}
std::shared_ptr<Tavrin::App::ILaunchTypeProcessor> launchType()
{
    return service<Tavrin::App::ILaunchTypeProcessor>("launch type processor");
}
std::shared_ptr<Tavrin::App::ILookAndFeelManager> lookAndFeel()
{
    if (auto manager = ServiceRegistry::instance().get<Tavrin::App::ILookAndFeelManager>())
        return manager;
    return lookAndFeelPointer().lock();
}

QString utf8(const std::string& text)
{
    return QString::fromStdString(text);
}

// One of the customisation's names, empty without a customisation manager.
QString customizationText(std::string (Tavrin::App::ICustomizationManager::*name)() const)
{
    const auto manager = customization();
    return manager ? utf8(((*manager).*name)()) : QString();
}
} // namespace

void init(std::weak_ptr<Tavrin::App::ILookAndFeelManager> const& manager)
{
    lookAndFeelPointer() = manager;
}

QString appUrl(Tavrin::URLKeys const& key)
{
    const auto manager = links();
    return manager ? manager->url(key) : QString();
}

QString supportCenterUrl()
{
    return appUrl(Tavrin::URLKeys::FAQ_URL);
}

QString supportCenterHRef()
{
    return Util::HTML::textWithLink(QCoreApplication::translate("Customization", "SupportCenter"),
                                    supportCenterUrl(), QStringLiteral("text-decoration: none"));
}

QString supportedFormatsURL()
{
    return appUrl(Tavrin::URLKeys::HELP_URL_supported_formats);
}

QString homepageYoutubeLocalized()
{
    return appUrl(Tavrin::URLKeys::HOMEPAGE_URL_youtube_description);
}

QString homepageVimeoLocalized()
{
    return appUrl(Tavrin::URLKeys::HOMEPAGE_URL_vimeo_description);
}

QString generateUrl(QString const& url)
{
    const auto manager = links();
    return manager ? manager->generateUrl(url, {}) : url;
}

void openUrl(QString const& url)
{
    if (const auto manager = links())
        manager->openUrl(url);
}

void openUrl(Tavrin::URLKeys const& key)
{
    if (const auto manager = links())
        manager->openUrl(key);
}

QString applicationName()
{
    return customizationText(&Tavrin::App::ICustomizationManager::applicationName);
}

QString productName()
{
    return customizationText(&Tavrin::App::ICustomizationManager::productName);
}

QString productNameLocalized()
{
    return customizationText(&Tavrin::App::ICustomizationManager::productNameLocalized);
}

QString organizationId()
{
    return customizationText(&Tavrin::App::ICustomizationManager::organizationId);
}

QString organizationDomainName()
{
    return customizationText(&Tavrin::App::ICustomizationManager::organizationDomainName);
}

QString organizationPresentableName()
{
    return customizationText(&Tavrin::App::ICustomizationManager::organizationPresentableName);
}

QString productFullName()
{
    return QStringLiteral("%1 %2").arg(organizationPresentableName(), productName());
}

QString productFullNameLocalized()
{
    return QStringLiteral("%1 %2").arg(organizationPresentableName(), productNameLocalized());
}

QString effectsStoreName()
{
    return QStringLiteral("Effects Store");
}

QString effectsStoreNameBranded()
{
    return QStringLiteral("Tavrin Effects Store");
}

Tavrin::App::LaunchType applicationLaunchType()
{
    const auto processor = launchType();
    return processor ? processor->applicationLaunchType() : Tavrin::App::LaunchType::Regular;
}

Tavrin::App::LaunchType productLaunchType()
{
    const auto processor = launchType();
    return processor ? processor->productLaunchType() : Tavrin::App::LaunchType::Regular;
}

bool isFirstApplicationLaunch()
{
    const auto processor = launchType();
    return processor ? processor->isFirstApplicationLaunch() : false;
}

bool isFirstProductLaunch()
{
    const auto processor = launchType();
    return processor ? processor->isFirstProductLaunch() : false;
}

QStringList const& availableLocales()
{
    static QStringList locales;
    static std::mutex mutex;
    std::lock_guard<std::mutex> lock(mutex);
    if (locales.isEmpty()) {
        if (auto manager = lookAndFeel())
            for (const std::string& locale : manager->availableLocales())
                locales << QString::fromStdString(locale);
    }
    return locales;
}

QString currentLocale()
{
    auto manager = lookAndFeel();
    return manager ? QString::fromStdString(manager->currentLocale()) : QString();
}

std::string startupLocale()
{
    const boost::any value = ServiceRegistry::instance().value("startupLocale");
    if (const std::string* locale = boost::any_cast<std::string>(&value))
        return *locale;
    return {};
}

QString localeDependedBoldText(QString const& text)
{
    const std::string locale = currentLocale().toStdString();
    // These scripts have no usable bold face in the fonts the editor ships with.
    if (locale == "ja_JP" || locale == "zh_CN" || locale == "zh_TW")
        return text;
    return Util::HTML::fontWeight(text, 700);
}

void apply(QObject* object)
{
    if (const auto manager = customization())
        manager->apply(object);
}

void applyLayout(QLayout* layout, QStringList const& order)
{
    if (!layout)
        return;
    QMap<QString, QWidget*> widgets;
    for (int index = layout->count() - 1; index >= 0; --index) {
        QLayoutItem* item = layout->takeAt(index);
        if (QWidget* widget = item->widget())
            widgets.insert(widget->objectName(), widget);
        delete item;
    }
    for (const QString& name : order) {
        const auto found = widgets.find(name);
        if (found == widgets.end())
            continue;
        layout->addWidget(*found);
        widgets.erase(found);
    }
    for (QWidget* widget : qAsConst(widgets))
        delete widget;
}

} // namespace Customization
