// A drop of many files onto a registered view: real drag events with a text/uri-list, routed
// by DragAndDropHandler, filtered by the MIME reader, and handed by FileAdder to the media
// model (a Media::FilePool that does not open them: the model's own work, not FFmpeg's).
//
//   bench_draganddrop N...   one line per N: best of 9 runs
//
// Per N: the drag enter (reading and filtering the list), the drop, the time until the
// model holds every file, and the longest stall of the GUI thread from the enter until
// then (the largest gap between ticks of a 1 ms timer). The peer: Qt's own reading of the
// same list (QMimeData::urls(), QUrl::toLocalFile(), an extension check), in the same run.

#include <DragAndDropHandler.h>

#include <FileAdder/FileAdder.h>
#include <FileUtil/FileUtil.h>
#include <Media/FilePool.h>
#include <Mime/MimeUtils.h>

#include <QApplication>
#include <QDir>
#include <QDropEvent>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QMimeData>
#include <QSet>
#include <QTemporaryDir>
#include <QTimer>
#include <QUrl>
#include <QWidget>

#include <algorithm>
#include <cstdio>

namespace {

// The data of a drag from another application, as the platform hands it over: the bytes
// as sent, read anew at each request (QMimeData::setData would parse the list once, ahead).
class ForeignMimeData : public QMimeData
{
public:
    explicit ForeignMimeData(const QByteArray& list) : m_list(list) {}
    QStringList formats() const override { return {MimeUtils::UriListType}; }
    bool hasFormat(const QString& format) const override { return format == MimeUtils::UriListType; }

protected:
    QVariant retrieveData(const QString& format, QVariant::Type) const override
    {
        return format == MimeUtils::UriListType ? QVariant(m_list) : QVariant();
    }

private:
    QByteArray m_list;
};

struct Run
{
    double enterMs = 0, dropMs = 0, firstSliceMs = 0, totalMs = 0, stallMs = 0, peerMs = 0, checkMs = 0;
};

Run once(const QByteArray& list, int files)
{
    Run run;
    ForeignMimeData data(list);
    QWidget view;
    view.setAcceptDrops(true);
    view.setObjectName(QStringLiteral("benchView"));
    DragAndDropHandler handler;
    handler.registerSource(&view, DragAndDropHandler::MediaFiles, Statistics::AddingMethod::DropOnMediaBin);
    handler.installEventFilterTo(&view);
    Media::FilePool pool;
    int held = 0;
    QElapsedTimer clock;
    PubSub::Subscription<FileAdder::MediaFilesNotification> model(
        FileAdder::globalObject(), [&](const FileAdder::MediaFilesNotification& m) {
            if (held == 0)
                run.firstSliceMs = clock.nsecsElapsed() / 1e6;
            pool.addFiles(m.files, Media::FilePool::Opening::Manual);
            held += m.files.size();
        });

    qint64 lastTick = 0;
    qint64 longest = 0;
    QTimer ticker;
    ticker.setInterval(1);
    QObject::connect(&ticker, &QTimer::timeout, [&] {
        const qint64 now = clock.nsecsElapsed();
        longest = std::max(longest, now - lastTick);
        lastTick = now;
    });
    ticker.start();
    clock.start();
    const QPoint at(5, 5);
    QDragEnterEvent enter(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&view, &enter);
    const qint64 entered = clock.nsecsElapsed();
    run.enterMs = entered / 1e6;
    QDragMoveEvent move(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&view, &move);
    const qint64 moved = clock.nsecsElapsed();
    QDropEvent drop(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&view, &drop);
    const qint64 dropped = clock.nsecsElapsed();
    run.dropMs = (dropped - moved) / 1e6;
    // Each event is one turn of the GUI thread, as the drag manager delivers them.
    longest = std::max({entered, moved - entered, dropped - moved});
    lastTick = dropped;
    while (held < files)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 5);
    run.totalMs = clock.nsecsElapsed() / 1e6;
    run.stallMs = longest / 1e6;

    QElapsedTimer peer;
    peer.start();
    int kept = 0;
    const QSet<QString> wanted{QStringLiteral("mp4")};
    for (const QUrl& url : data.urls())
        kept += url.isLocalFile() && wanted.contains(QFileInfo(url.toLocalFile()).suffix().toLower());
    run.peerMs = peer.nsecsElapsed() / 1e6;
    if (kept != files)
        std::fprintf(stderr, "peer kept %d of %d\n", kept, files);

    // The file system's part: the editor's file utility checking the same files, alone.
    QStringList paths;
    for (const QUrl& url : data.urls())
        paths << url.toLocalFile();
    QElapsedTimer check;
    check.start();
    const int checked = FileUtil::extractFiles(paths, FileUtil::supportedFileExtensions()).size();
    run.checkMs = check.nsecsElapsed() / 1e6;
    if (checked != files)
        std::fprintf(stderr, "file utility kept %d of %d\n", checked, files);
    return run;
}

} // namespace

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    const QStringList sizes = application.arguments().mid(1);
    std::printf("| files | enter ms | drop ms | first slice ms | in the model ms | longest GUI stall ms | Qt's reading ms | enter / Qt | file utility alone ms | in the model / file utility |\n"
                "|---|---|---|---|---|---|---|---|---|---|\n");
    for (const QString& size : sizes.isEmpty() ? QStringList{QStringLiteral("1000"), QStringLiteral("10000")} : sizes) {
        const int files = size.toInt();
        QTemporaryDir dir;
        QByteArray list = "# a file manager's list\r\n";
        for (int i = 0; i < files; ++i) {
            const QString path = dir.filePath(QStringLiteral("clip %1.mp4").arg(i, 6, 10, QLatin1Char('0')));
            QFile(path).open(QIODevice::WriteOnly);
            list += QUrl::fromLocalFile(path).toEncoded() + "\r\n";
        }
        Run best;
        for (int round = 0; round < 9; ++round) {
            const Run run = once(list, files);
            if (round == 0 || run.totalMs < best.totalMs)
                best = run;
            best.stallMs = round == 0 ? run.stallMs : std::min(best.stallMs, run.stallMs);
            best.peerMs = round == 0 ? run.peerMs : std::min(best.peerMs, run.peerMs);
            best.enterMs = round == 0 ? run.enterMs : std::min(best.enterMs, run.enterMs);
            best.checkMs = round == 0 ? run.checkMs : std::min(best.checkMs, run.checkMs);
        }
        std::printf("| %d | %.2f | %.2f | %.1f | %.1f | %.1f | %.2f | %.2f | %.1f | %.2f |\n", files, best.enterMs,
                    best.dropMs, best.firstSliceMs, best.totalMs, best.stallMs, best.peerMs, best.enterMs / best.peerMs,
                    best.checkMs, best.totalMs / best.checkMs);
        std::fflush(stdout);
    }
    Media::FilePool::drainWorkers();
    return 0;
}
