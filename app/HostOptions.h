#pragma once

#include <QString>
#include <QStringList>

// Options of the reference host itself. They are taken out of the command line before
// the editor's own parsing sees it, so a host option value is never mistaken for a file.
struct HostOptions
{
    QString screenshotPath;     // --screenshot <file.png>: save the main window once ready, then quit
    int quitAfterReadyMs = -1;  // --quit-after-ready <ms>: quit that long after the ready notification
    QString dialogGalleryDir;   // --dialog-gallery <folder>: render every standard dialog and exit
    QString locale;             // --locale <code>: user-interface locale, e.g. de_DE
    bool placeOnTimeline = false; // --place-on-timeline: put the named media on the timeline once opened
    QString saveProjectPath;    // --save-project <file.kvproj>: then save the project there and quit

    // Removes the host options from `arguments` (element 0 is the program) and returns them.
    static HostOptions take(QStringList& arguments);
};
