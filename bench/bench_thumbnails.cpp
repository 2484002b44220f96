// bench_thumbnails FILE...   asks the thumbnail service for every file at once from the
//                            main thread's event loop, as a view does, and measures how long
//                            until the last answer and the longest time the event loop did
//                            not turn meanwhile (a 1 ms timer that should fire every 1 ms).
//                            Prints one line: files, made, failed, ms, longest_stall_ms,
//                            p99_stall_ms.

#include <Log/Logging.h>
#include <Media/Thumbnails.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <vector>

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

    std::vector<qint64> gaps;
    gaps.reserve(100000);
    QElapsedTimer clock;
    qint64 last = 0;
    QTimer ticker;
    ticker.setTimerType(Qt::PreciseTimer);
    ticker.setInterval(1);
    QObject::connect(&ticker, &QTimer::timeout, [&] {
        const qint64 now = clock.nsecsElapsed();
        gaps.push_back(now - last);
        last = now;
    });

    clock.start();
    ticker.start();
    // The requests themselves are part of what the event loop must get through.
    QTimer::singleShot(0, [&] {
        for (const QString& path : paths)
            service.request(path, Media::Thumbnails::Normal);
    });
    QCoreApplication::exec();
    const double ms = clock.nsecsElapsed() / 1e6;
    std::sort(gaps.begin(), gaps.end());
    const double longest = gaps.empty() ? 0 : gaps.back() / 1e6;
    const double p99 = gaps.empty() ? 0 : gaps[gaps.size() * 99 / 100] / 1e6;
    std::printf("thumbnails files=%d made=%d failed=%d ms=%.1f longest_stall_ms=%.2f p99_stall_ms=%.2f ticks=%zu\n",
                int(paths.size()), made, failed, ms, longest, p99, gaps.size());
    return failed ? 1 : 0;
}
