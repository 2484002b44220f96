#include "HostOptions.h"

#include <functional>
#include <map>

HostOptions HostOptions::take(QStringList& arguments)
{
    HostOptions options;
    const std::map<QString, std::function<void(const QString&)>> withValue{
        {QStringLiteral("--screenshot"), [&](const QString& v) { options.screenshotPath = v; }},
        {QStringLiteral("--quit-after-ready"), [&](const QString& v) { options.quitAfterReadyMs = v.toInt(); }},
        {QStringLiteral("--dialog-gallery"), [&](const QString& v) { options.dialogGalleryDir = v; }},
        {QStringLiteral("--locale"), [&](const QString& v) { options.locale = v; }},
        {QStringLiteral("--save-project"), [&](const QString& v) { options.saveProjectPath = v; }},
    };
    const std::map<QString, std::function<void()>> flags{
        {QStringLiteral("--place-on-timeline"), [&] { options.placeOnTimeline = true; }},
    };
    QStringList kept;
    for (int i = 0; i < arguments.size(); ++i) {
        const QString& argument = arguments.at(i);
        const int eq = argument.indexOf(QLatin1Char('='));
        const QString name = eq > 0 ? argument.left(eq) : argument;
        const auto flag = flags.find(argument);
        if (i > 0 && flag != flags.end()) {
            flag->second();
            continue;
        }
        const auto option = withValue.find(name);
        if (i > 0 && option != withValue.end()) {
            if (eq > 0)
                option->second(argument.mid(eq + 1));
            else if (i + 1 < arguments.size())
                option->second(arguments.at(++i));
            continue;
        }
        kept << argument;
    }
    arguments = kept;
    return options;
}
