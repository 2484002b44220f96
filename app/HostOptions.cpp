#include "HostOptions.h"

#include <functional>
#include <map>

HostOptions HostOptions::take(QStringList& arguments)
{
    HostOptions options;
    const std::map<QString, std::function<void(const QString&)>> withValue{
        {QStringLiteral("--screenshot"), [&](const QString& v) { options.screenshotPath = v; }},
        {QStringLiteral("--quit-after-ready"), [&](const QString& v) { options.quitAfterReadyMs = v.toInt(); }},
        {QStringLiteral("--quit-after-batches"), [&](const QString& v) { options.quitAfterBatches = v.toInt(); }},
        {QStringLiteral("--dialog-gallery"), [&](const QString& v) { options.dialogGalleryDir = v; }},
        {QStringLiteral("--locale"), [&](const QString& v) { options.locale = v; }},
        {QStringLiteral("--find-missing"), [&](const QString& v) { options.findMissingList = v; }},
        {QStringLiteral("--search-folder"), [&](const QString& v) { options.searchFolder = v; }},
        {QStringLiteral("--show-file"), [&](const QString& v) { options.showFile = v; }},
        {QStringLiteral("--save-project"), [&](const QString& v) { options.saveProjectPath = v; }},
        {QStringLiteral("--save-portable"), [&](const QString& v) { options.savePortablePath = v; }},
        {QStringLiteral("--thumbnails-to"), [&](const QString& v) { options.thumbnailsDir = v; }},
        {QStringLiteral("--thumbnail-size"), [&](const QString& v) { options.thumbnailSize = v.toInt(); }},
        {QStringLiteral("--drop-uri-list"), [&](const QString& v) { options.dropUriList = v; }},
        {QStringLiteral("--drop-target"), [&](const QString& v) { options.dropTarget = v; }},
        {QStringLiteral("--drop-overlay"), [&](const QString& v) { options.dropOverlay = v; }},
        {QStringLiteral("--drop-effect"), [&](const QString& v) { options.dropEffect = v; }},
        {QStringLiteral("--drop-bin-item"), [&](const QString& v) { options.dropBinItem = v; }},
    };
    const std::map<QString, std::function<void()>> flags{
        {QStringLiteral("--place-on-timeline"), [&] { options.placeOnTimeline = true; }},
        {QStringLiteral("--help"), [&] { options.help = true; }},
        {QStringLiteral("-h"), [&] { options.help = true; }},
        {QStringLiteral("-?"), [&] { options.help = true; }},
        {QStringLiteral("--version"), [&] { options.version = true; }},
        {QStringLiteral("-v"), [&] { options.version = true; }},
    };
    QStringList kept;
    for (int i = 0; i < arguments.size(); ++i) {
        const QString& argument = arguments.at(i);
        const int eq = argument.indexOf(QLatin1Char('='));
        const QString name = eq > 0 ? argument.left(eq) : argument;
        if (const auto flag = flags.find(argument); i > 0 && flag != flags.end()) {
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

QString HostOptions::usage()
{
    return QStringLiteral(
        "Usage: klipvane [options] [file...]\n"
        "Opens the files in the running editor, or starts the editor with them.\n"
        "Project files (.kvproj) are opened as projects, other files added as media.\n"
        "\n"
        "Options:\n"
        "  --mode <mode>              editor mode: normal (default) or slideshow\n"
        "  --locale <code>            user-interface locale, e.g. de_DE\n"
        "  --screenshot <png>         save the main window once ready, then quit\n"
        "  --quit-after-ready <ms>    quit that long after start-up\n"
        "  --quit-after-batches <n>   quit once n media batches have been reported\n"
        "  --place-on-timeline        put the named media on the timeline once they have opened\n"
        "  --save-project <file>      then save the project there and quit\n"
        "  --save-portable <file>     ...or save it there with copies of its media, and quit\n"
        "  --dialog-gallery <folder>  render every standard dialog to a PNG there and exit\n"
        "  --thumbnails-to <folder>   write the named files' thumbnails there as PNGs and exit\n"
        "  --thumbnail-size <px>      the box those thumbnails are fitted into (default 128)\n"
        "  --find-missing <list>      show the missing-files dialog for the paths listed, one a line\n"
        "  --search-folder <folder>   ...and start its search of that folder at once; without\n"
        "                             --find-missing, the same for a project opened with missing\n"
        "                             media, its result taken when the search ends\n"
        "  --show-file <path>         reveal the file in the file manager once ready\n"
        "  --drop-uri-list <file>     drop that text/uri-list onto the timeline once ready, with\n"
        "                             real drag events, as a file manager would\n"
        "  --drop-target <name>       ...onto that view instead: mediaBin, importPage, timelineView\n"
        "  --drop-overlay <name>      drop that preset of the Overlays page onto the timeline\n"
        "  --drop-bin-item <name>     drop the media bin's item of that name onto the timeline\n"
        "  --drop-effect <id>         drop that effect onto the timeline's first media clip once there is one\n"
        "  -h, --help                 print this help and exit\n"
        "  -v, --version              print the version and exit\n");
}
