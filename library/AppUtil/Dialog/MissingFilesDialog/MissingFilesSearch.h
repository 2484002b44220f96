#pragma once

#include "AppUtil_export.h"

#include <QHash>
#include <QMap>
#include <QSet>
#include <QString>

namespace Task {
class Progress;
}

// The search behind the missing-files dialog and `kvrelink`: one walk over a folder and
// its subfolders looking for files named like the missing ones.
namespace MissingFiles {

struct SearchResult
{
    QMap<QString, QString> found; // old path -> new path
    QSet<QString> remaining;      // old paths still missing
    int unreadableFolders = 0;
    quint64 foldersRead = 0;
    quint64 filesMet = 0;
};

// Walks `folder` in the traverser's order (FS::Traverser) and, for each file, looks for a
// pending old path with exactly the same file name (case-sensitive, extension included).
// The first file met wins. When several pending paths share one name, the files of that
// name are gathered over the whole walk and paired with them by folders: the pairs sharing
// most trailing folder names first ("/old/b/clip.mp4" with "/new/b/clip.mp4"), ties to
// the file met first. Stops when nothing is pending.
// `progress`, when given, is checked for cancellation before each file and receives the
// share of paths found so far. Unreadable folders are logged once per search.
APPUTIL_EXPORT SearchResult search(const QString& folder, const QSet<QString>& pending, Task::Progress* progress = nullptr);

// The old paths of `found` whose new file's size differs from the size recorded for the old
// path (paths without a recorded size, or a negative one, are never reported). Sorted.
APPUTIL_EXPORT QStringList sizeMismatches(const QMap<QString, QString>& found, const QHash<QString, qint64>& recordedSizes);

} // namespace MissingFiles
