#include "App/LaunchTypeProcessor.h"

#include <Settings/Settings.h>

namespace Tavrin {
namespace App {
namespace {
LaunchType recordLaunch(const QString& key, const QString& version)
{
    const QVariant previous = Settings::value(key);
    Settings::setValue(key, version);
    if (!previous.isValid())
        return LaunchType::FirstAfterInstall;
    return previous.toString() == version ? LaunchType::Regular : LaunchType::FirstAfterUpdate;
}

QString keyPart(const QString& name)
{
    // '/' would open a settings group and '\\' is the INI escape.
    QString part = name;
    part.replace(QLatin1Char('/'), QLatin1Char('_')).replace(QLatin1Char('\\'), QLatin1Char('_'));
    return part.isEmpty() ? QStringLiteral("_") : part;
}
} // namespace

LaunchTypeProcessor::LaunchTypeProcessor(const QString& productId, const QString& applicationName,
                                         const QString& version)
    : m_product(recordLaunch(QStringLiteral("Launches/Product/") + keyPart(productId), version))
    , m_application(recordLaunch(QStringLiteral("Launches/Application/") + keyPart(applicationName), version))
{
    Settings::sync();
}

LaunchTypeProcessor::~LaunchTypeProcessor() = default;

bool LaunchTypeProcessor::isFirstProductLaunch() const
{
    return m_product == LaunchType::FirstAfterInstall;
}

bool LaunchTypeProcessor::isFirstApplicationLaunch() const
{
    return m_application == LaunchType::FirstAfterInstall;
}

LaunchType LaunchTypeProcessor::productLaunchType() const
{
    return m_product;
}

LaunchType LaunchTypeProcessor::applicationLaunchType() const
{
    return m_application;
}

} // namespace App
} // namespace Tavrin
