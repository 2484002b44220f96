#pragma once

#include <QImage>
#include <QString>

class QFileInfo;

namespace Media {

// The desktop's shared thumbnail cache ($XDG_CACHE_HOME/thumbnails, else ~/.cache/thumbnails),
// read and written the way file managers do, so pictures they made are reused here and
// pictures made here show up there:
//
//   <folder>/normal/<md5 of the file's URI>.png     fitted into 128 x 128
//   <folder>/large/..., x-large/..., xx-large/...   256, 512, 1024
//   <folder>/fail/klipvane-<version>/<md5>.png       "this program could not make one"
//
// An entry is valid only while its "Thumb::URI" text is the file's URI and its "Thumb::MTime"
// is the file's modification time in whole seconds; anything else (another file, an older
// version, a damaged PNG) is treated as absent and overwritten. Entries are written to a
// private temporary file beside their final name and renamed over it, so a reader never
// sees half a picture; files are 0600 and the folders made here 0700 (thumbnails show what
// the user's files contain). Every function may be called from any thread.
namespace ThumbnailCache {

// What identifies a version of an original file.
struct Original
{
    QString path;  // absolute
    QString uri;   // file:// URI, percent-encoded as the desktop writes it
    qint64 mtime = 0;
    qint64 size = 0;

    static Original of(const QFileInfo& file);
};

QString folder();
// The size of the folder that serves a request for `size` pixels: the smallest that is not
// smaller, at most 1024.
int flavorSize(int size);
QString flavorName(int flavorSize);
// The entry of `original` in the folder of `flavorSize`, and its failure marker.
QString entryPath(const Original& original, int flavorSize);
QString failurePath(const Original& original);
// Whether pictures of `path` may be written: never for the cache's own files.
bool isCacheable(const QString& path);

// The picture of a valid entry, or a null image.
QImage read(const QString& entryFile, const Original& original);
// Writes `picture` as the entry `entryFile` of `original`. `durationMs` > 0 is recorded for
// players. False, with the reason in `error`, when it could not be written.
bool write(const QString& entryFile, const QImage& picture, const Original& original, qint64 durationMs = 0,
           QString* error = nullptr);

bool hasFailure(const Original& original);
bool writeFailure(const Original& original);

} // namespace ThumbnailCache
} // namespace Media
