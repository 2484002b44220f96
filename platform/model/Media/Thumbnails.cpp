#include "Media/Thumbnails.h"

#include "Media/Opening.h"
#include "Media/ThumbnailCache.h"
#include "Media/ThumbnailDecoder_p.h"

#include <QCache>
#include <QCoreApplication>
#include <QFileInfo>
#include <QHash>
#include <QLibrary>
#include <QPainter>
#include <QPointer>
#include <QRunnable>
#include <QThread>
#include <QThreadPool>

#include <glog/logging.h>

#include <atomic>
#include <cerrno>
#include <mutex>

#include <sys/resource.h>
#include <unistd.h>

namespace Media {
namespace {

// How long a stalled input (a hung network share) may hold a worker.
constexpr int DecodeTimeoutMs = 20000;
constexpr qint64 DefaultMemoryLimit = 16 * 1024 * 1024;
constexpr int BackgroundNiceness = 5;

struct DecoderModule
{
    QLibrary library; // never unloaded: a worker may be inside it when the process ends
    Reader::IThumbnailDecoder* decoder = nullptr;
    QString problem;
};

const DecoderModule& decoderModule()
{
    static DecoderModule module;
    static std::once_flag once;
    std::call_once(once, [] {
        module.library.setFileName(mediaReaderPath());
        auto create = reinterpret_cast<Reader::CreateThumbnailDecoderFunction>(
            module.library.resolve(Reader::CreateThumbnailDecoderFunctionName));
        module.decoder = create ? create() : nullptr;
        if (!module.decoder) {
            module.problem = QStringLiteral("The media reader module could not be loaded: ") + module.library.errorString();
            LOG(ERROR) << module.problem.toStdString();
        }
    });
    return module;
}

QImage fitted(const QImage& image, int size)
{
    if (image.width() <= size && image.height() <= size)
        return image;
    return image.scaled(size, size, Qt::KeepAspectRatio, Qt::SmoothTransformation);
}

// A file with sound and no pictures is shown by its loudness over time, in a 16:9 box
// like a video's, so that rows of mixed files line up.
QImage drawWaveform(const std::vector<float>& peaks, int width)
{
    QImage image(width, std::max(1, width * 9 / 16), QImage::Format_RGB32);
    image.fill(QColor(0x26, 0x32, 0x38));
    if (peaks.empty())
        return image;
    float loudest = 0.05f; // silence stays flat instead of being blown up to full height
    for (float peak : peaks)
        loudest = std::max(loudest, peak);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0x4f, 0xc3, 0xf7));
    const double column = double(image.width()) / peaks.size();
    const double middle = image.height() / 2.0;
    for (std::size_t i = 0; i < peaks.size(); ++i) {
        const double half = std::max(0.5, peaks[i] / loudest * (middle - 2));
        painter.drawRect(QRectF(i * column, middle - half, std::max(1.0, column * 0.7), 2 * half));
    }
    return image;
}

// Pictures are background work: on a busy machine the user's clicks and scrolling come
// first. Linux gives each thread its own nice value.
void yieldToForeground()
{
    thread_local bool lowered = false;
    if (lowered)
        return;
    lowered = true;
    const pid_t thread = gettid();
    errno = 0;
    const int nice = getpriority(PRIO_PROCESS, id_t(thread));
    if (errno == 0)
        setpriority(PRIO_PROCESS, id_t(thread), std::min(nice + BackgroundNiceness, 19));
}

QString keyOf(const QString& path, int size)
{
    return QString::number(size) + QLatin1Char('|') + path;
}

bool isKeyOf(const QString& key, const QString& path)
{
    return QStringRef(&key).mid(key.indexOf(QLatin1Char('|')) + 1) == path;
}

} // namespace

Thumbnail makeThumbnail(const QString& path, int size)
{
    Thumbnail result;
    result.path = path;
    result.size = size;
    auto fail = [&result](const QString& why) {
        result.origin = Thumbnail::Origin::Failed;
        result.error = why;
        return result;
    };
    const QFileInfo info(path);
    if (!info.exists())
        return fail(QStringLiteral("No such file"));
    if (!info.isFile())
        return fail(QStringLiteral("Not a regular file"));
    if (!info.isReadable())
        return fail(QStringLiteral("Permission denied"));
    if (info.size() == 0)
        return fail(QStringLiteral("Empty file"));

    const auto original = ThumbnailCache::Original::of(info);
    const int flavor = ThumbnailCache::flavorSize(size);
    // A larger entry serves a smaller request as well as its own would.
    for (int bigger = flavor; bigger <= Thumbnails::XXLarge; bigger *= 2) {
        const QImage found = ThumbnailCache::read(ThumbnailCache::entryPath(original, bigger), original);
        if (!found.isNull()) {
            result.image = fitted(found, size);
            result.origin = Thumbnail::Origin::SharedCache;
            return result;
        }
    }
    if (ThumbnailCache::hasFailure(original))
        return fail(QStringLiteral("No picture could be made before, and the file has not changed since"));

    const DecoderModule& module = decoderModule();
    if (!module.decoder)
        return fail(module.problem);
    const Reader::DecodedPicture decoded = module.decoder->decode(original.path, flavor, DecodeTimeoutMs);
    if (decoded.error != 0) {
        // Remembered in the shared cache, so that no later run decodes this version again.
        if (ThumbnailCache::isCacheable(original.path))
            ThumbnailCache::writeFailure(original);
        return fail(QString::fromStdString(decoded.errorMessage));
    }
    const QImage picture = decoded.frame.isNull() ? drawWaveform(decoded.peaks, flavor) : decoded.frame;
    QString problem;
    if (ThumbnailCache::isCacheable(original.path)
        && !ThumbnailCache::write(ThumbnailCache::entryPath(original, flavor), picture, original, decoded.durationMs, &problem))
        LOG(WARNING) << "Thumbnail of " << path.toStdString() << " not kept in the cache: " << problem.toStdString();
    result.image = fitted(picture, size);
    result.origin = Thumbnail::Origin::Made;
    return result;
}

struct Thumbnails::Impl
{
    QThreadPool threads;
    QCache<QString, QImage> memory;
    QHash<QString, QString> failures;
    // Requests handed to a worker, with the flag that tells it the request was withdrawn.
    QHash<QString, std::shared_ptr<std::atomic<bool>>> pending;
    int newest = 0;
};

Thumbnails& Thumbnails::instance()
{
    static QPointer<Thumbnails> service;
    if (!service)
        service = new Thumbnails(QCoreApplication::instance());
    return *service;
}

Thumbnails::Thumbnails(QObject* parent) : QObject(parent), d(std::make_unique<Impl>())
{
    qRegisterMetaType<Media::Thumbnail>();
    // Decoding is all computation: one core stays free for the GUI thread.
    d->threads.setMaxThreadCount(std::max(1, QThread::idealThreadCount() - 1));
    d->memory.setMaxCost(int(DefaultMemoryLimit));
}

Thumbnails::~Thumbnails()
{
    // Workers post to this object: none may still run when it goes.
    for (const auto& withdrawn : qAsConst(d->pending))
        *withdrawn = true;
    d->threads.clear();
    d->threads.waitForDone();
}

QImage Thumbnails::request(const QString& path, int size)
{
    if (path.isEmpty() || size <= 0)
        return QImage();
    const QString key = keyOf(path, size);
    if (const QImage* image = d->memory.object(key))
        return *image;
    if (d->pending.contains(key) || d->failures.contains(path))
        return QImage();
    auto withdrawn = std::make_shared<std::atomic<bool>>(false);
    d->pending.insert(key, withdrawn);
    // Ever higher priorities: the newest request is served first.
    d->threads.start(QRunnable::create([this, path, size, withdrawn] {
        if (*withdrawn)
            return;
        yieldToForeground();
        const Thumbnail thumbnail = makeThumbnail(path, size);
        QMetaObject::invokeMethod(this, [this, thumbnail] { deliver(thumbnail); }, Qt::QueuedConnection);
    }), ++d->newest);
    return QImage();
}

void Thumbnails::deliver(const Thumbnail& thumbnail)
{
    d->pending.remove(keyOf(thumbnail.path, thumbnail.size));
    if (thumbnail.isFailed()) {
        d->failures.insert(thumbnail.path, thumbnail.error);
    } else {
        const qint64 bytes = thumbnail.image.sizeInBytes();
        d->memory.insert(keyOf(thumbnail.path, thumbnail.size), new QImage(thumbnail.image), int(std::min<qint64>(bytes, INT_MAX)));
    }
    emit finished(thumbnail);
    if (thumbnail.isFailed())
        emit failed(thumbnail.path, thumbnail.error);
    else
        emit ready(thumbnail.path, thumbnail.image);
    if (d->pending.isEmpty())
        emit idle();
}

void Thumbnails::cancel(const QString& path)
{
    bool withdrew = false;
    for (auto it = d->pending.begin(); it != d->pending.end();) {
        if (isKeyOf(it.key(), path)) {
            *it.value() = true;
            it = d->pending.erase(it);
            withdrew = true;
        } else {
            ++it;
        }
    }
    if (withdrew && d->pending.isEmpty())
        emit idle();
}

void Thumbnails::forget(const QString& path)
{
    d->failures.remove(path);
    for (const QString& key : d->memory.keys())
        if (isKeyOf(key, path))
            d->memory.remove(key);
}

QImage Thumbnails::cached(const QString& path, int size) const
{
    const QImage* image = d->memory.object(keyOf(path, size));
    return image ? *image : QImage();
}

bool Thumbnails::isPending(const QString& path, int size) const
{
    return d->pending.contains(keyOf(path, size));
}

QString Thumbnails::failure(const QString& path) const
{
    return d->failures.value(path);
}

int Thumbnails::pendingCount() const
{
    return d->pending.size();
}

void Thumbnails::setMemoryLimit(qint64 bytes)
{
    d->memory.setMaxCost(int(std::clamp<qint64>(bytes, 0, INT_MAX)));
}

qint64 Thumbnails::memoryUsed() const
{
    return d->memory.totalCost();
}

void Thumbnails::clearMemory()
{
    d->memory.clear();
    d->failures.clear();
}

} // namespace Media
