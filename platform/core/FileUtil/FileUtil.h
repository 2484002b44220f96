#pragma once

#include <QString>
#include <QStringList>

#include <functional>

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
// unsupported entries are dropped without a message, except two that opening explains to
// the user: a name whose bytes are not UTF-8 and a symbolic link loop.
QStringList extractFiles(const QStringList& paths, const QStringList& extensions);
// The same, for walks that may be long (a folder such as "/"): `cancelled` is asked between
// entries and ends the walk early, with what was found so far.
QStringList extractFiles(const QStringList& paths, const QStringList& extensions,
                         const std::function<bool()>& cancelled);
// True when one of `paths` is a folder, whose expansion may take long.
bool containsFolder(const QStringList& paths);

} // namespace FileUtil

namespace FS {
// Lower-case extension of a path without the dot ("clip.MP4" -> "mp4").
QString extensionL(const QString& path);
} // namespace FS
