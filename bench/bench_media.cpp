// bench_media open FILE...      opens the files through the media model and the file open
//                               handler; prints the milliseconds until the batch's pass ran.
// bench_media analyze N         a batch of N files reported by the model (no disk), a third
//                               of them failed; the pass analyses the batch and removes the
//                               failed files, as a host does when the user chooses "Remove".
//                               Prints the milliseconds of the whole batch, of the analysis
//                               and of the removal.

#include <FileOpenHandler.h>

#include <Log/Logging.h>
#include <Media/FilePool.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTimer>

#include <cstdio>

namespace {

class BenchHandler : public FileOpenHandler
{
public:
    qint64 analysisNs = 0;
    int failed = 0;
    int opened = 0;
    bool done = false;
    Media::FilePool* removeFailedFrom = nullptr;
    qint64 removalNs = 0;

private:
    void processing() override
    {
        if (processedFilesCount() < totalFilesCount())
            return;
        QElapsedTimer timer;
        timer.start();
        const AnalyzedProduct product = makeFilesAnalyze();
        analysisNs = timer.nsecsElapsed();
        failed = int(product.failedFiles.size());
        opened = totalFilesCount() - failed;
        if (removeFailedFrom) {
            QElapsedTimer removal;
            removal.start();
            for (const Media::File* file : product.failedFiles)
                removeFailedFrom->removeFile(file);
            removalNs = removal.nsecsElapsed();
        }
        clear();
        done = true;
        QCoreApplication::quit();
    }
};

int open(const QStringList& paths)
{
    QElapsedTimer timer;
    timer.start();
    Media::FilePool pool;
    BenchHandler handler;
    pool.addView(&handler);
    pool.addFiles(paths);
    QCoreApplication::exec();
    std::printf("open files=%d opened=%d failed=%d ms=%.1f\n", int(paths.size()), handler.opened, handler.failed,
                timer.nsecsElapsed() / 1e6);
    return 0;
}

int analyze(int count)
{
    Media::FilePool pool;
    BenchHandler handler;
    handler.removeFailedFrom = &pool;
    pool.addView(&handler);
    QStringList paths;
    for (int i = 0; i < count; ++i)
        paths << QStringLiteral("/media/clip%1.mp4").arg(i);
    QElapsedTimer timer;
    timer.start();
    const QList<const Media::File*> files = pool.addFiles(paths, Media::FilePool::Opening::Manual);
    for (int i = 0; i < files.size(); ++i) {
        Media::OpenResult result;
        if (i % 3 == 0) {
            result.state = Media::File::State::Failed;
            result.unsupportedCodecs << QStringLiteral("h265");
            result.errors.emplace_back(Tavrin::Proc::UnsupportedCodec, "bench", "bench", 1, "unsupported", "");
        } else {
            result.state = Media::File::State::Opened;
            Media::VideoTrack track;
            track.codecId = QStringLiteral("h264");
            track.transfer = i % 5 == 0 ? QStringLiteral("bt709") : QString();
            result.video.push_back(track);
        }
        pool.finishOpening(files[i], result);
    }
    QCoreApplication::exec();
    std::printf("analyze files=%d batch_ms=%.2f analysis_ms=%.3f removal_ms=%.3f\n", count, timer.nsecsElapsed() / 1e6,
                handler.analysisNs / 1e6, handler.removalNs / 1e6);
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    Tavrin::Log::init(argv[0]);
    QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() >= 3 && arguments[1] == QLatin1String("open"))
        return open(arguments.mid(2));
    if (arguments.size() == 3 && arguments[1] == QLatin1String("analyze"))
        return analyze(arguments[2].toInt());
    std::fputs("usage: bench_media open FILE... | bench_media analyze N\n", stderr);
    return 2;
}
