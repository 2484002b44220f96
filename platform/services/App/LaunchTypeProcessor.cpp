#include "App/LaunchTypeProcessor.h"

#include <Settings/Settings.h>

namespace Tavrin {
namespace App {
namespace {
// Writes only when the recorded version changes: most launches are regular ones, and a
// launch that merely hands its files to the running editor must not pay for a disk sync.
LaunchType recordLaunch(const QString& key, const QString& version, bool* changed)
{
    const QVariant previous = Settings::value(key);
    if (previous.isValid() && previous.toString() == version)
        return LaunchType::Regular;
    Settings::setValue(key, version);
    *changed = true;
    return previous.isValid() ? LaunchType::FirstAfterUpdate : LaunchType::FirstAfterInstall;
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
{
    bool changed = false;
    m_product = recordLaunch(QStringLiteral("Launches/Product/") + keyPart(productId), version, &changed);
    m_application = recordLaunch(QStringLiteral("Launches/Application/") + keyPart(applicationName), version, &changed);
    if (changed)
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
