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
        {QStringLiteral("--log-stalls"), [&](const QString& v) { options.logStallsMs = v.toInt(); }},
        {QStringLiteral("--request-opengl"), [&](const QString& v) { options.requestOpengl = v; }},
        {QStringLiteral("--request-opengl-silently"), [&](const QString& v) {
             options.requestOpengl = v;
             options.requestOpenglSilently = true;
         }},
        {QStringLiteral("--inhibit-ms"), [&](const QString& v) { options.inhibitMs = v.toInt(); }},
        {QStringLiteral("--crash-with-opengl"), [&](const QString& v) { options.crashWithOpengl = v; }},
        {QStringLiteral("--hang-with-opengl"), [&](const QString& v) { options.hangWithOpengl = v; }},
        {QStringLiteral("--apply-effect"), [&](const QString& v) { options.applyEffect = v; }},
        {QStringLiteral("--clip-actions"), [&](const QString& v) { options.clipActions = v; }},
        {QStringLiteral("--play-ms"), [&](const QString& v) { options.playMs = v.toInt(); }},
        {QStringLiteral("--preview-at"), [&](const QString& v) { options.previewAtMs = v.toInt(); }},
        {QStringLiteral("--preview-frame-to"), [&](const QString& v) { options.previewFrameTo = v; }},
        {QStringLiteral("--usage-level"), [&](const QString& v) { options.usageLevel = v; }},
        {QStringLiteral("--usage-log"), [&](const QString& v) { options.usageLog = v; }},
        {QStringLiteral("--statistics-click"), [&](const QString& v) { options.statisticsClicks << v; }},
        {QStringLiteral("--drop-uri-list"), [&](const QString& v) { options.dropUriList = v; }},
        {QStringLiteral("--drop-target"), [&](const QString& v) { options.dropTarget = v; }},
        {QStringLiteral("--drop-overlay"), [&](const QString& v) { options.dropOverlay = v; }},
        {QStringLiteral("--drop-effect"), [&](const QString& v) { options.dropEffect = v; }},
        {QStringLiteral("--drop-bin-item"), [&](const QString& v) { options.dropBinItem = v; }},
    };
    const std::map<QString, std::function<void()>> flags{
        {QStringLiteral("--place-on-timeline"), [&] { options.placeOnTimeline = true; }},
        {QStringLiteral("--accept-aspect"), [&] { options.acceptAspect = true; }},
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
        "  --apply-effect <id>        then put that effect on every placed clip (one undo step)\n"
        "  --clip-actions <list>      then change every placed clip: speed=<x>,reverse,tone,stabilize\n"
        "  --accept-aspect            answer the offer to match the project's frame shape with Change\n"
        "  --save-portable <file>     ...or save it there with copies of its media, and quit\n"
        "  --dialog-gallery <folder>  render every standard dialog to a PNG there and exit\n"
        "  --thumbnails-to <folder>   write the named files' thumbnails there as PNGs and exit\n"
        "  --thumbnail-size <px>      the box those thumbnails are fitted into (default 128)\n"
        "  --find-missing <list>      show the missing-files dialog for the paths listed, one a line\n"
        "  --search-folder <folder>   ...and start its search of that folder at once; without\n"
        "                             --find-missing, the same for a project opened with missing\n"
        "                             media, its result taken when the search ends\n"
        "  --show-file <path>         reveal the file in the file manager once ready\n"
        "  --log-stalls <ms>          log each time the window stops responding for longer than that\n"
        "  --request-opengl <kind>    switch to software or hardware OpenGL as View > Display does\n"
        "  --request-opengl-silently <kind>  the same without asking (restarts at once)\n"
        "  --inhibit-ms <n>           keep the desktop awake for n ms once ready, then release\n"
        "  --crash-with-opengl <kind> abort before ready when rendering with that OpenGL (tests)\n"
        "  --hang-with-opengl <kind>  hang before ready when rendering with that OpenGL (tests)\n"
        "  --play-ms <n>              play the timeline from its start for n ms once the named\n"
        "                             media are placed (with --place-on-timeline), then quit\n"
        "  --preview-at <ms>          move the playhead there once they are placed\n"
        "  --preview-frame-to <png>   then save the preview's frame there and quit\n"
        "  --usage-level <level>      record usage at this level for this run only: off, basic\n"
        "                             or detailed (the user's choice in Preferences is kept)\n"
        "  --usage-log <file>         keep the usage record in this file\n"
        "  --statistics-click <event> click the control tagged with this event once ready\n"
        "                             (event@source to pick one source; may be repeated)\n"
        "  --drop-uri-list <file>     drop that text/uri-list onto the timeline once ready, with\n"
        "                             real drag events, as a file manager would\n"
        "  --drop-target <name>       ...onto that view instead: mediaBin, importPage, timelineView\n"
        "  --drop-overlay <name>      drop that preset of the Overlays page onto the timeline\n"
        "  --drop-bin-item <name>     drop the media bin's item of that name onto the timeline\n"
        "  --drop-effect <id>         drop that effect onto the timeline's first media clip once there is one\n"
        "  -h, --help                 print this help and exit\n"
        "  -v, --version              print the version and exit\n");
}
