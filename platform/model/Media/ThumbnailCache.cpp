#include "Media/ThumbnailCache.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QImageReader>
#include <QImageWriter>
#include <QTemporaryFile>
#include <QUrl>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <sys/stat.h>

namespace Media {
namespace ThumbnailCache {
namespace {

const char* const UriKey = "Thumb::URI";
const char* const MTimeKey = "Thumb::MTime";

QString homeCache()
{
    const QString xdg = qEnvironmentVariable("XDG_CACHE_HOME");
    // A relative XDG path is invalid and must be ignored.
    if (!xdg.isEmpty() && QDir::isAbsolutePath(xdg))
        return xdg;
    return QDir::homePath() + QStringLiteral("/.cache");
}

// Creates the missing folders of `path` one by one, each private to the user. Folders that
// exist keep the mode their owner gave them.
bool makePrivatePath(const QString& path)
{
    if (QFileInfo(path).isDir())
        return true;
    const QString parent = QFileInfo(path).path();
    if (parent != path && !makePrivatePath(parent))
        return false;
    return ::mkdir(QFile::encodeName(path).constData(), 0700) == 0 || errno == EEXIST;
}

qint64 parseMTime(const QString& text)
{
    bool whole = false;
    const qint64 value = text.toLongLong(&whole);
    if (whole)
        return value;
    // Some writers add a fraction; the standard compares whole seconds.
    bool real = false;
    const double seconds = text.toDouble(&real);
    return real ? qint64(seconds) : -1;
}

bool matches(const QImage& image, const Original& original)
{
    return !image.isNull() && image.text(QLatin1String(UriKey)) == original.uri
        && parseMTime(image.text(QLatin1String(MTimeKey))) == original.mtime;
}

bool writeAtomically(const QString& target, const QImage& picture, const Original& original, qint64 durationMs,
                     QString* error)
{
    auto fail = [error](const QString& why) {
        if (error)
            *error = why;
        return false;
    };
    const QString folder = QFileInfo(target).path();
    if (!makePrivatePath(folder))
        return fail(QStringLiteral("Cannot create %1: %2").arg(folder, QString::fromLocal8Bit(std::strerror(errno))));
    // QTemporaryFile creates its file 0600, the mode the entry keeps after the rename.
    QTemporaryFile temporary(folder + QStringLiteral("/.klipvane-XXXXXX.png"));
    if (!temporary.open())
        return fail(temporary.errorString());
    // Texts go on the image: QImageWriter::setText would split the keys at their colons.
    QImage entry = picture;
    entry.setText(QLatin1String(UriKey), original.uri);
    entry.setText(QLatin1String(MTimeKey), QString::number(original.mtime));
    entry.setText(QStringLiteral("Thumb::Size"), QString::number(original.size));
    if (durationMs > 0)
        entry.setText(QStringLiteral("Thumb::Movie::Length"), QString::number(durationMs / 1000));
    entry.setText(QStringLiteral("Software"), QStringLiteral("Klipvane " KLIPVANE_VERSION));
    QImageWriter writer(&temporary, "png");
    if (!writer.write(entry))
        return fail(writer.errorString());
    if (!temporary.flush())
        return fail(temporary.errorString());
    temporary.close();
    if (std::rename(QFile::encodeName(temporary.fileName()).constData(), QFile::encodeName(target).constData()) != 0)
        return fail(QString::fromLocal8Bit(std::strerror(errno)));
    temporary.setAutoRemove(false);
    return true;
}

QString entryName(const Original& original)
{
    return QString::fromLatin1(QCryptographicHash::hash(original.uri.toUtf8(), QCryptographicHash::Md5).toHex())
        + QStringLiteral(".png");
}

} // namespace

Original Original::of(const QFileInfo& file)
{
    Original original;
    original.path = file.absoluteFilePath();
    original.uri = QString::fromLatin1(QUrl::fromLocalFile(original.path).toEncoded());
    original.mtime = file.lastModified().toSecsSinceEpoch();
    original.size = file.size();
    return original;
}

QString folder()
{
    return homeCache() + QStringLiteral("/thumbnails");
}

int flavorSize(int size)
{
    for (int flavor : {128, 256, 512})
        if (size <= flavor)
            return flavor;
    return 1024;
}

QString flavorName(int flavorSize)
{
    switch (flavorSize) {
    case 128: return QStringLiteral("normal");
    case 256: return QStringLiteral("large");
    case 512: return QStringLiteral("x-large");
    default: return QStringLiteral("xx-large");
    }
}

QString entryPath(const Original& original, int flavorSize)
{
    return folder() + QLatin1Char('/') + flavorName(flavorSize) + QLatin1Char('/') + entryName(original);
}

QString failurePath(const Original& original)
{
    return folder() + QStringLiteral("/fail/klipvane-" KLIPVANE_VERSION "/") + entryName(original);
}

bool isCacheable(const QString& path)
{
    return !QFileInfo(path).absoluteFilePath().startsWith(folder() + QLatin1Char('/'));
}

QImage read(const QString& entryFile, const Original& original)
{
    QImageReader reader(entryFile, "png");
    QImage image;
    // A damaged or foreign file is simply not an entry; it gets replaced.
    if (!reader.read(&image) || !matches(image, original))
        return QImage();
    return image;
}

bool write(const QString& entryFile, const QImage& picture, const Original& original, qint64 durationMs, QString* error)
{
    if (!isCacheable(original.path)) {
        if (error)
            *error = QStringLiteral("The thumbnail cache does not hold pictures of its own files");
        return false;
    }
    return writeAtomically(entryFile, picture, original, durationMs, error);
}

bool hasFailure(const Original& original)
{
    return !read(failurePath(original), original).isNull();
}

bool writeFailure(const Original& original)
{
    // The marker is a picture like any entry (one transparent pixel): readers treat all alike.
    QImage marker(1, 1, QImage::Format_ARGB32);
    marker.fill(Qt::transparent);
    return write(failurePath(original), marker, original);
}

} // namespace ThumbnailCache
} // namespace Media
