#include "App/LinksManager.h"

#include <QDesktopServices>
#include <QUrl>
#include <QUrlQuery>

#include <glog/logging.h>

namespace Tavrin {
namespace App {
namespace {
bool isWebAddress(const QUrl& url)
{
    const QString scheme = url.scheme().toLower();
    return url.isValid() && !url.host().isEmpty()
           && (scheme == QLatin1String("http") || scheme == QLatin1String("https"));
}
} // namespace

LinksGenerator::LinksGenerator(ProductDescription description, std::function<QString()> locale)
    : m_description(std::move(description))
    , m_locale(std::move(locale))
{
}

LinksGenerator::~LinksGenerator() = default;

QString LinksGenerator::url(URLKeys key) const
{
    return m_description.urls.value(key);
}

QString LinksGenerator::generateUrl(const QString& base, const UrlParameters& parameters) const
{
    QUrl url(base);
    if (!isWebAddress(url))
        return base;
    QUrlQuery query(url);
    const auto add = [&query](const QString& name, const QString& value) {
        if (!name.isEmpty() && !query.hasQueryItem(name))
            query.addQueryItem(name, value);
    };
    for (auto it = parameters.begin(); it != parameters.end(); ++it)
        add(it.key(), it.value());
    for (auto it = m_description.urlParameters.begin(); it != m_description.urlParameters.end(); ++it)
        add(it.key(), it.value());
    const QString locale = m_locale ? m_locale() : QString();
    if (!locale.isEmpty())
        add(m_description.localeParameter, locale);
    url.setQuery(query);
    return url.toString(QUrl::FullyEncoded);
}

bool DesktopLinksOpener::openUrl(const QString& address)
{
    const QUrl url(address);
    if (!isWebAddress(url)) {
        LOG(WARNING) << "Refusing to open \"" << address.toStdString() << "\": only http and https addresses are opened";
        return false;
    }
    if (!QDesktopServices::openUrl(url)) {
        LOG(WARNING) << "The desktop could not open " << address.toStdString();
        return false;
    }
    return true;
}

LinksManager::LinksManager(std::shared_ptr<ILinksGenerator> generator, std::shared_ptr<ILinksOpener> opener)
    : m_generator(std::move(generator))
    , m_defaultOpener(std::move(opener))
    , m_opener(m_defaultOpener)
{
}

LinksManager::~LinksManager() = default;

QString LinksManager::url(URLKeys key) const
{
    const QString configured = m_generator->url(key);
    if (configured.isEmpty())
        return QString();
    return m_generator->generateUrl(configured, {});
}

QString LinksManager::generateUrl(const QString& base, const UrlParameters& parameters) const
{
    return m_generator->generateUrl(base, parameters);
}

bool LinksManager::openUrl(const QString& url)
{
    return m_opener->openUrl(url);
}

bool LinksManager::openUrl(URLKeys key)
{
    const QString address = url(key);
    if (address.isEmpty()) {
        LOG(WARNING) << "The product has no address for " << toString(key).toStdString();
        return false;
    }
    return openUrl(address);
}

void LinksManager::setLinksOpener(std::shared_ptr<ILinksOpener> opener)
{
    m_opener = opener ? std::move(opener) : m_defaultOpener;
}

} // namespace App
} // namespace Tavrin
