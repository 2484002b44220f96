#pragma once

#include <QString>
#include <QStringList>

// Options of the reference host itself. They are taken out of the command line before
// the editor's own parsing sees it, so a host option value is never mistaken for a file.
struct HostOptions
{
    QString screenshotPath;     // --screenshot <file.png>: save the main window once ready, then quit
    int quitAfterReadyMs = -1;  // --quit-after-ready <ms>: quit that long after the ready notification
    int quitAfterBatches = -1;  // --quit-after-batches <n>: quit once n media batches have been reported
    QString dialogGalleryDir;   // --dialog-gallery <folder>: render every standard dialog and exit
    QString locale;             // --locale <code>: user-interface locale, e.g. de_DE
    QString findMissingList;    // --find-missing <list>: the missing-files dialog for the paths listed (one a line)
    QString searchFolder;       // --search-folder <folder>: ...with the search of this folder started at once
    QString showFile;           // --show-file <path>: reveal the file in the file manager once ready
    QString thumbnailsDir;      // --thumbnails-to <folder>: write the named files' thumbnails there and exit
    int thumbnailSize = 128;    // --thumbnail-size <px>: the box they are fitted into
    bool help = false;          // --help, -h: print the usage and exit
    bool version = false;       // --version, -v: print the version and exit
    bool placeOnTimeline = false; // --place-on-timeline: put the named media on the timeline once opened
    QString savePortablePath;   // --save-portable <file.kvproj>: ...or a portable project (media copied beside it)
    QString saveProjectPath;    // --save-project <file.kvproj>: then save the project there and quit
    int logStallsMs = -1;       // --log-stalls <ms>: log each stall of the GUI thread longer than that
    QString requestOpengl;      // --request-opengl software|hardware: switch as View > Display does (asks)
    bool requestOpenglSilently = false; // --request-opengl-silently <kind>: the same without questions
    int inhibitMs = -1;         // --inhibit-ms <n>: suppress power saving for n ms once ready, then release
    QString crashWithOpengl;    // --crash-with-opengl <kind>: abort before ready when rendering with it
    QString hangWithOpengl;     // --hang-with-opengl <kind>: stop responding before ready when rendering with it
    QString applyEffect;        // --apply-effect <id>: after --place-on-timeline, put the effect on every clip
    QString clipActions;        // --clip-actions <list>: ...and change them: speed=<x>,reverse,tone,stabilize
    bool acceptAspect = false;  // --accept-aspect: click "Change" in the aspect offer when it comes
    int playMs = -1;            // --play-ms <n>: play the timeline from its start for n ms once placed, then quit
    int previewAtMs = -1;       // --preview-at <ms>: move the playhead there once placed
    QString previewFrameTo;     // --preview-frame-to <png>: save the preview's frame (after the above) and quit
    QString usageLevel;         // --usage-level <off|basic|detailed>: usage recording for this run only
    QString usageLog;           // --usage-log <file>: the usage audit log instead of the user's
    QStringList statisticsClicks; // --statistics-click <event[@source]>: activate that tagged control once ready
    QString dropUriList;        // --drop-uri-list <file>: drop that text/uri-list onto a view once ready
    QString dropTarget = QStringLiteral("timelineView"); // --drop-target <object name>: ...onto this view
    QString dropOverlay;        // --drop-overlay <name>: drop that Overlays preset onto the timeline once ready
    QString dropBinItem;        // --drop-bin-item <name>: drop the media bin's item of that name onto the timeline once ready
    QString dropEffect;         // --drop-effect <id>: drop that effect onto the timeline's first media clip once it has one

    // Removes the host options from `arguments` (element 0 is the program) and returns them.
    static HostOptions take(QStringList& arguments);

    // What --help prints.
    static QString usage();
};
