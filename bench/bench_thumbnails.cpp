// bench_thumbnails FILE...   asks the thumbnail service for every file at once from the
//                            main thread's event loop, as a view does, and measures how long
//                            until the last answer and how long the event loop did not turn
//                            meanwhile (a 1 ms timer that should fire every 1 ms).
//
// The same timer runs for one second before the requests, with nothing to do: on a shared
// machine that is the stall the scheduler alone causes. For each gap between two ticks the
// main thread's own CPU time is measured too: a long gap with little CPU is the thread
// waiting for a core, not the event loop being blocked by work.
// Prints one line: files, made, failed, ms, longest_stall_ms, p99_stall_ms, longest_busy_ms,
// idle_longest_stall_ms, idle_p99_stall_ms.

#include <Log/Logging.h>
#include <Media/Thumbnails.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <vector>

namespace {

qint64 threadCpuNs()
{
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return qint64(now.tv_sec) * 1000000000 + now.tv_nsec;
}

struct Gaps
{
    std::vector<qint64> wall;
    qint64 longestBusy = 0;

    double longestMs() const { return wall.empty() ? 0 : *std::max_element(wall.begin(), wall.end()) / 1e6; }
    double p99Ms() const
    {
        if (wall.empty())
            return 0;
        std::vector<qint64> sorted = wall;
        std::sort(sorted.begin(), sorted.end());
        return sorted[sorted.size() * 99 / 100] / 1e6;
    }
};

} // namespace

int main(int argc, char** argv)
{
    Tavrin::Log::init(argv[0]);
    QCoreApplication application(argc, argv);
    const QStringList paths = QCoreApplication::arguments().mid(1);
    if (paths.isEmpty()) {
        std::fputs("usage: bench_thumbnails FILE...\n", stderr);
        return 2;
    }
    Media::Thumbnails service;
    int made = 0;
    int failed = 0;
    QObject::connect(&service, &Media::Thumbnails::finished, [&](const Media::Thumbnail& thumbnail) {
        (thumbnail.isFailed() ? failed : made) += 1;
    });
    QObject::connect(&service, &Media::Thumbnails::idle, &application, &QCoreApplication::quit);

    Gaps idle;
    Gaps working;
    Gaps* current = &idle;
    QElapsedTimer clock;
    qint64 lastWall = 0;
    qint64 lastCpu = 0;
    QTimer ticker;
    ticker.setTimerType(Qt::PreciseTimer);
    ticker.setInterval(1);
    QObject::connect(&ticker, &QTimer::timeout, [&] {
        const qint64 wall = clock.nsecsElapsed();
        const qint64 cpu = threadCpuNs();
        current->wall.push_back(wall - lastWall);
        current->longestBusy = std::max(current->longestBusy, cpu - lastCpu);
        lastWall = wall;
        lastCpu = cpu;
    });

    QElapsedTimer work;
    clock.start();
    lastCpu = threadCpuNs();
    ticker.start();
    QTimer::singleShot(1000, [&] {
        current = &working;
        work.start();
        // The requests themselves are part of what the event loop must get through.
        for (const QString& path : paths)
            service.request(path, Media::Thumbnails::Normal);
    });
    QCoreApplication::exec();
    const double ms = work.nsecsElapsed() / 1e6;
    std::printf("thumbnails files=%d made=%d failed=%d ms=%.1f longest_stall_ms=%.2f p99_stall_ms=%.2f "
                "longest_busy_ms=%.2f idle_longest_stall_ms=%.2f idle_p99_stall_ms=%.2f\n",
                int(paths.size()), made, failed, ms, working.longestMs(), working.p99Ms(), working.longestBusy / 1e6,
                idle.longestMs(), idle.p99Ms());
    return failed ? 1 : 0;
}
