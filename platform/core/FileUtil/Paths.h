#pragma once

#include "Conf/FormatFile.h"

#include <QString>
#include <QStringList>

// Path helpers and folders of the file dialogs.
namespace FS {

QString cleanPath(const QString& path);
QStringList cleanPaths(const QStringList& paths);
// The last component ("/a/b.mp4" -> "b.mp4") and the absolute folder ("/a") of a path.
QString fileName(const QString& path);
QString absolutePath(const QString& path);
// `path` with the extension `suffix` (no dot) appended unless it already ends in it
// (compared case-insensitively).
QString withSuffix(const QString& path, const QString& suffix);
// Entries of `folder` whose names match the wildcard `pattern`, sorted, as clean paths.
QStringList pathList(const QString& folder, const QString& pattern);
bool makePath(const QString& folder);

} // namespace FS

namespace FileUtil {

// The user's standard folders; the home folder when the system names none.
QString moviesLocation();
QString musicLocation();
QString picturesLocation();
QString documentsLocation();

// The folder projects were last opened from or saved to (settings), else the documents folder.
QString lastProjectDirectory();
void setLastProjectDirectory(const QString& folder);

// `path` if it is an existing folder, else its nearest existing ancestor, else home.
QString closestPath(const QString& path);

// The files under `folder` (below its subfolders too when `recursive`), sorted, clean.
QStringList parseDirectory(const QString& folder, bool recursive);

// Reduces the files of a DVD structure (VOB, IFO and BUP files of a VIDEO_TS folder) to
// the folder's VIDEO_TS.IFO, once per folder, where the first of them stood; other files
// pass unchanged.
QStringList filterFilesFromDVD(const QStringList& files);

// "*.mp4 *.mov ..." over all groups of `groups` ("*" for all files).
QString getGroupExtentions(const Tavrin::Conf::IFormatFile::Groups& groups);
// "Video Files (*.mp4 *.mov ...)".
QString getGroupExtFilter(Tavrin::Conf::IFormatFile::Group group);
// One named filter per group, joined with ";;" as QFileDialog expects.
QString getExtFilterForDialog(const Tavrin::Conf::IFormatFile::Groups& groups);

} // namespace FileUtil
