#pragma once

#include "AppUtil_export.h"

#include <QMap>
#include <QString>
#include <QStringList>
#include <QUrl>

// The open, save and folder dialogs for every way media, projects, LUTs and snapshots enter
// or leave the editor. Each function picks the title, the filter and the start folder
// (remembered per purpose in the settings, else a standard folder), shows a modal dialog
// parented to the current top window, and cleans and remembers the result. An empty result
// means the user cancelled.
namespace FileDialog {

// Media kinds of openFiles/openFile: a flag word.
enum Kind { Video = 1, Audio = 2, Images = 4, Projects = 8, AllFiles = 16 };

APPUTIL_EXPORT QStringList openFiles(int kind);
APPUTIL_EXPORT QString openFile(int kind);
APPUTIL_EXPORT QStringList openAddFilesAndDirectoriesDialog();
APPUTIL_EXPORT QStringList openDirectory();
APPUTIL_EXPORT QStringList openDirectoryAllImages();
APPUTIL_EXPORT QString openLutFile();
APPUTIL_EXPORT QString openProject(QString folder);
APPUTIL_EXPORT QStringList openStockedAudioFiles(QString folder);
APPUTIL_EXPORT QString savingProjectPath(QString path);
// A portable project lives in a folder of its own, named after it; an existing folder is
// replaced only with the user's consent (and kept when it holds `current` itself).
APPUTIL_EXPORT QString savingProjectPortablePath(const QString& current);
APPUTIL_EXPORT QString savingSnapshotPath();
APPUTIL_EXPORT QString browseDirectory(const QString& start);
APPUTIL_EXPORT QString browseDirectoryUrl(const QUrl& start);
// Asks for the new location of one missing file; empty for a file of no known type.
APPUTIL_EXPORT QString findMissingFile(QString path);
// Shows the missing-files dialog for `paths` and fills `found` with old path -> new path.
// True when every file was found (or there was none), false when the user skipped.
APPUTIL_EXPORT bool findMissingFiles(QStringList paths, QMap<QString, QString>& found);
// Reveals the file in the user's file manager.
APPUTIL_EXPORT void showFile(QString path);

} // namespace FileDialog
