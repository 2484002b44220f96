#pragma once

#include <QString>
#include <QStringList>

namespace FileUtil {

// Lower-case extensions (without the dot) of every file the editor can open (media and
// projects), and of each media group, as the format configuration lists them.
QStringList supportedFileExtensions();
QStringList videoExtensions();
QStringList pictureExtensions();
QStringList musicExtensions();

// The readable files named by `paths` whose extension is in `extensions` (compared
// case-insensitively), as absolute clean paths in the given order. A folder is replaced
// by the matching files below it, recursively, sorted by path. Missing, unreadable and
// unsupported entries are dropped without a message.
QStringList extractFiles(const QStringList& paths, const QStringList& extensions);

} // namespace FileUtil

namespace FS {
// Lower-case extension of a path without the dot ("clip.MP4" -> "mp4").
QString extensionL(const QString& path);
} // namespace FS
