#include "PreviewDecoder.h"

#include <Media/FrameReader_p.h>
#include <Media/Opening.h>
#include <Util/Mailbox.h>

#include <QElapsedTimer>
#include <QLibrary>
#include <QMutex>
#include <QWaitCondition>

#include <glog/logging.h>

#include <map>
#include <optional>
#include <set>
#include <thread>

namespace {

// A stalled input (a network share gone away) holds the decoder at most this long.
constexpr int OpenTimeoutMs = 10000;
// Files kept open: the clips around the playhead; more would only hold memory.
constexpr std::size_t OpenReaders = 4;

Media::Reader::OpenFrameReaderFunction openFunction(QString* problem)
{
    static QLibrary library; // never unloaded: the decoder thread may be inside it at exit
    static Media::Reader::OpenFrameReaderFunction function = [] {
        library.setFileName(Media::mediaReaderPath());
        return reinterpret_cast<Media::Reader::OpenFrameReaderFunction>(
            library.resolve(Media::Reader::OpenFrameReaderFunctionName));
    }();
    if (!function && problem)
        *problem = library.errorString();
    return function;
}

} // namespace

struct PreviewDecoder::Impl
{
    std::shared_ptr<Tavrin::Util::Mailbox> mailbox;
    QMutex mutex;
    QWaitCondition wake;
    std::optional<FrameRequest> waiting;
    quint64 serial = 0;
    bool stopping = false;
    Media::Reader::OpenFrameReaderFunction open = nullptr;
    std::thread thread;

    // Decoder thread only.
    std::map<QString, std::unique_ptr<Media::Reader::IFrameReader>> readers;
    std::set<QString> unreadable;

    void run()
    {
        for (;;) {
            FrameRequest request;
            {
                QMutexLocker lock(&mutex);
                while (!stopping && !waiting)
                    wake.wait(&mutex);
                if (stopping)
                    return;
                request = std::move(*waiting);
                waiting.reset();
            }
            deliver(decode(request));
        }
    }

    std::function<void(DecodedFrame)> deliver;

    DecodedFrame decode(const FrameRequest& request)
    {
        QElapsedTimer timer;
        timer.start();
        DecodedFrame frame;
        frame.request = request;
        Media::Reader::IFrameReader* reader = readerFor(request.path, frame.problem);
        if (!reader) {
            frame.decodingFailed = true;
            return frame;
        }
        const Media::Reader::VideoFrame decoded =
            reader->frameAt(request.sourceUs, request.filters.toStdString(), request.box);
        frame.image = decoded.image;
        frame.ptsUs = decoded.ptsUs;
        frame.pastEnd = decoded.pastEnd;
        frame.decodingFailed = decoded.decodingFailed || decoded.error != 0;
        frame.problem = QString::fromStdString(decoded.errorMessage);
        frame.decodeUs = timer.nsecsElapsed() / 1000;
        return frame;
    }

    Media::Reader::IFrameReader* readerFor(const QString& path, QString& problem)
    {
        if (const auto found = readers.find(path); found != readers.end())
            return found->second.get();
        if (unreadable.count(path)) {
            problem = QStringLiteral("cannot be decoded");
            return nullptr;
        }
        if (!open) {
            problem = QStringLiteral("the media reader module is not available");
            return nullptr;
        }
        std::string error;
        std::unique_ptr<Media::Reader::IFrameReader> reader(open(path, OpenTimeoutMs, &error));
        if (!reader) {
            unreadable.insert(path);
            problem = QString::fromStdString(error);
            return nullptr;
        }
        if (readers.size() >= OpenReaders)
            readers.erase(readers.begin());
        return readers.emplace(path, std::move(reader)).first->second.get();
    }
};

PreviewDecoder::PreviewDecoder(QObject* parent) : QObject(parent), d(std::make_unique<Impl>())
{
    qRegisterMetaType<DecodedFrame>();
    d->mailbox = std::make_shared<Tavrin::Util::Mailbox>(this);
    QString problem;
    d->open = openFunction(&problem);
    if (!d->open)
        LOG(ERROR) << "preview: the media reader module could not be loaded: " << problem.toStdString();
    d->deliver = [this, box = d->mailbox](DecodedFrame frame) {
        box->post([this, frame = std::move(frame)] { emit frameDecoded(frame); });
    };
    d->thread = std::thread([impl = d.get()] { impl->run(); });
}

PreviewDecoder::~PreviewDecoder()
{
    d->mailbox->close();
    {
        QMutexLocker lock(&d->mutex);
        d->stopping = true;
        d->wake.wakeAll();
    }
    d->thread.join();
}

quint64 PreviewDecoder::request(FrameRequest request)
{
    QMutexLocker lock(&d->mutex);
    request.serial = ++d->serial;
    d->waiting = std::move(request);
    d->wake.wakeAll();
    return d->serial;
}

bool PreviewDecoder::isAvailable() const
{
    return d->open != nullptr;
}
