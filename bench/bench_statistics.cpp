// Helpers of bench/run_statistics.sh.
//
//   bench_statistics parse N      a window of N tagged push buttons (in groups of 50 on
//                                 panels) and N/10 tagged menu actions: the time of
//                                 Statistics::parse over it, and of the peer, a walk of the
//                                 same window that only finds the controls and reads their
//                                 tags (findChildren + property), best of 5 fresh windows each
//   bench_statistics burst N      N interaction messages published at once to the tracker
//                                 (detailed level, audit log in a temporary folder) against a
//                                 bare bus subscriber: GUI-thread time per message, and the
//                                 time until the log holds them all
//   bench_statistics paced RATE S RATE messages a second for S seconds, published from a
//                                 1 ms timer as clicks would come: GUI-thread time per message
//                                 in the first and the last second, the longest GUI-thread
//                                 step, and how far the log lags behind at the end

#include "UsageTracker.h"

#include <Statistics.h>

#include <QAction>
#include <QApplication>
#include <QElapsedTimer>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTimer>
#include <QVBoxLayout>

#include <algorithm>
#include <cstdio>
#include <memory>

namespace {

std::unique_ptr<QWidget> makeWindow(int controls)
{
    auto window = std::make_unique<QWidget>();
    auto* menuBar = new QMenuBar(window.get());
    QMenu* menu = menuBar->addMenu(QStringLiteral("Menu"));
    QWidget* panel = nullptr;
    for (int i = 0; i < controls; ++i) {
        if (i % 50 == 0)
            panel = new QWidget(window.get());
        auto* button = new QPushButton(panel);
        Statistics::setEventKey(button, QStringLiteral("button%1").arg(i % 97), QStringLiteral("panel"));
        Statistics::addEventParam(button, QStringLiteral("index"), QString::number(i % 13));
        if (i % 10 == 0)
            Statistics::setEventKey(menu->addAction(QStringLiteral("Entry")), QStringLiteral("entry"), QStringLiteral("menu"));
    }
    return window;
}

double msSince(const QElapsedTimer& timer)
{
    return timer.nsecsElapsed() / 1e6;
}

int parse(int controls)
{
    double best = 1e18;
    double bestPeer = 1e18;
    int connected = 0;
    for (int round = 0; round < 5; ++round) {
        auto window = makeWindow(controls);
        QElapsedTimer timer;
        timer.start();
        int tagged = 0;
        for (QObject* object : window->findChildren<QObject*>())
            tagged += object->property(Statistics::EventProperty).isValid() ? 1 : 0;
        bestPeer = std::min(bestPeer, msSince(timer));
        const int before = Statistics::connectedCount();
        timer.restart();
        Statistics::parse(window.get());
        Statistics::parse(window->findChild<QMenuBar*>());
        best = std::min(best, msSince(timer));
        connected = Statistics::connectedCount() - before;
        if (connected != tagged) {
            std::fprintf(stderr, "connected %d of %d tagged controls\n", connected, tagged);
            return 1;
        }
    }
    std::printf("parse %d controls (+%d actions): %.3f ms, walk %.3f ms, ratio %.2f, %.2f us per control\n", controls,
                connected - controls, best, bestPeer, best / bestPeer, best * 1000 / connected);
    return 0;
}

const QMap<QString, QString> kParams{{QStringLiteral("collection"), QStringLiteral("Effects")},
                                     {QStringLiteral("format"), QStringLiteral("mp4")}};

void publishOne(int i)
{
    PubSub::publish(Statistics::InteractionNotification(QStringLiteral("button%1").arg(i % 97),
                                                        QStringLiteral("panel"), kParams));
}

int burst(int count)
{
    QTemporaryDir dir;
    double bare = 0;
    {
        int heard = 0;
        PubSub::Subscription<Statistics::InteractionNotification> subscriber(
            Statistics::globalObject(), [&heard](const Statistics::InteractionNotification&) { ++heard; });
        QElapsedTimer timer;
        timer.start();
        for (int i = 0; i < count; ++i)
            publishOne(i);
        bare = msSince(timer);
    }
    UsageTracker tracker(dir.filePath(QStringLiteral("usage.jsonl")));
    tracker.setLevel(UsageTracker::Level::Detailed, false);
    QElapsedTimer timer;
    timer.start();
    for (int i = 0; i < count; ++i)
        publishOne(i);
    const double gui = msSince(timer);
    tracker.flush();
    const double written = msSince(timer);
    std::printf("burst %d: tracker %.3f us per message on the GUI thread, bare bus %.3f us (ratio %.1f); "
                "all in the log after %.1f ms (%.0f messages/s)\n",
                count, gui * 1000 / count, bare * 1000 / count, gui / bare, written, count / (written / 1000));
    return tracker.isLogHealthy() ? 0 : 1;
}

int paced(int rate, int seconds)
{
    QTemporaryDir dir;
    UsageTracker tracker(dir.filePath(QStringLiteral("usage.jsonl")));
    tracker.setLevel(UsageTracker::Level::Detailed, false);
    const int total = rate * seconds;
    int sent = 0;
    double firstSecond = 0;
    double lastSecond = 0;
    double longestStep = 0;
    QElapsedTimer clock;
    clock.start();
    QTimer timer;
    timer.setTimerType(Qt::PreciseTimer);
    timer.setInterval(1);
    QObject::connect(&timer, &QTimer::timeout, [&] {
        // Catch up to where the clock says we should be, as a steady stream would.
        const int due = std::min<qint64>(total, clock.elapsed() * rate / 1000 + 1);
        QElapsedTimer step;
        step.start();
        const int from = sent;
        for (; sent < due; ++sent)
            publishOne(sent);
        const double spent = msSince(step);
        longestStep = std::max(longestStep, spent);
        if (from < rate)
            firstSecond += spent;
        if (from >= total - rate)
            lastSecond += spent;
        if (sent == total) {
            timer.stop();
            QApplication::quit();
        }
    });
    timer.start();
    QApplication::exec();
    const double published = clock.elapsed();
    QElapsedTimer lag;
    lag.start();
    tracker.flush();
    std::printf("paced %d/s for %d s: sent %d in %.0f ms; GUI time per message %.3f us in the first second, %.3f us "
                "in the last; longest GUI step %.2f ms; log caught up %.1f ms after the last message\n",
                rate, seconds, total, published, firstSecond * 1000 / rate, lastSecond * 1000 / rate, longestStep,
                msSince(lag));
    return tracker.isLogHealthy() ? 0 : 1;
}

} // namespace

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    const QStringList args = QApplication::arguments();
    const QString mode = args.value(1);
    if (mode == QLatin1String("parse") && args.size() == 3)
        return parse(args.at(2).toInt());
    if (mode == QLatin1String("burst") && args.size() == 3)
        return burst(args.at(2).toInt());
    if (mode == QLatin1String("paced") && args.size() == 4)
        return paced(args.at(2).toInt(), args.at(3).toInt());
    std::fprintf(stderr, "usage: bench_statistics parse N | burst N | paced RATE SECONDS\n");
    return 2;
}
