#pragma once

#include <QImage>
#include <QMetaType>
#include <QObject>
#include <QString>

#include <memory>

namespace Media {

// One answer of the thumbnail service.
struct Thumbnail
{
    enum class Origin {
        Memory,      // held in memory from an earlier answer
        SharedCache, // read from the desktop's thumbnail cache (made here or by a file manager)
        Made,        // decoded now, and written to the shared cache
        Failed,      // no picture: the file is missing, damaged or has nothing to show
    };

    QString path;
    int size = 0;
    QImage image;   // fitted into size x size; null when failed
    Origin origin = Origin::Failed;
    QString error;  // why it failed, for logs

    bool isFailed() const { return origin == Origin::Failed; }
};

// Pictures of media files for the media bin and the timeline: a representative frame of a
// video (a tenth of the way in, skipping dark and flat frames), the waveform of an audio file.
// They are decoded with FFmpeg in the run-time loaded reader module on a thread pool that
// leaves the GUI thread a core, shared with the desktop through its thumbnail cache
// (Media::ThumbnailCache), and the latest are kept in a bounded memory cache, so a view asks
// again whenever it paints an item and pays nothing while the picture is in memory.
//
//   auto& thumbnails = Media::Thumbnails::instance();
//   connect(&thumbnails, &Media::Thumbnails::ready, view, [view] { view->update(); });
//   QImage picture = thumbnails.request(path, 64);   // null at first; ready() follows
//
// Requests are served newest first: the items a view shows now come before the ones it
// showed a moment ago. A failed file is remembered and not decoded again in this process
// (nor, while it is unchanged, in later ones: the shared cache keeps a failure marker).
// Every call and every signal is on the thread that owns the service (the GUI thread).
class Thumbnails : public QObject
{
    Q_OBJECT
public:
    enum Size { Normal = 128, Large = 256, XLarge = 512, XXLarge = 1024 };

    // The application's service, owned by the application object.
    static Thumbnails& instance();

    explicit Thumbnails(QObject* parent = nullptr);
    ~Thumbnails() override;

    // The picture of `path` fitted into `size` x `size` when it is in memory. Otherwise a null
    // image, and the picture is looked for in the shared cache or made: finished() follows,
    // then ready() or failed(). Asking again while it is on its way does nothing more.
    QImage request(const QString& path, int size = Normal);
    // Drops the requests for `path` that no worker has started yet (an item left the view).
    void cancel(const QString& path);
    // Forgets the pictures and the failure of `path` held in memory (the file changed or
    // came back), so the next request looks again.
    void forget(const QString& path);

    QImage cached(const QString& path, int size = Normal) const;
    bool isPending(const QString& path, int size = Normal) const;
    // Why `path` has no picture, or an empty string.
    QString failure(const QString& path) const;
    int pendingCount() const;

    // Bound of the memory cache, in bytes of pixels (16 MiB unless set).
    void setMemoryLimit(qint64 bytes);
    qint64 memoryUsed() const;
    // Forgets every picture and failure held in memory (the shared cache stays).
    void clearMemory();

signals:
    void finished(const Media::Thumbnail& thumbnail);
    void ready(const QString& path, const QImage& image);
    void failed(const QString& path, const QString& reason);
    // The last pending request ended.
    void idle();

private:
    void deliver(const Thumbnail& thumbnail);

    struct Impl;
    std::unique_ptr<Impl> d;
};

// Makes the picture of `path` on the calling thread, which must not be the GUI thread:
// the shared cache, then the reader module. What the service's workers run.
Thumbnail makeThumbnail(const QString& path, int size);

} // namespace Media

Q_DECLARE_METATYPE(Media::Thumbnail)
