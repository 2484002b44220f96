#include <Task/Task.h>

#include <QThread>
#include <QtTest>

#include <atomic>

namespace {

// Counts to `steps`, reporting each step, until cancelled.
class Counter : public Task::IExecutor
{
public:
    explicit Counter(int steps, int sleepUs = 0) : m_steps(steps), m_sleepUs(sleepUs) {}
    void run(Task::Progress& progress) override
    {
        thread = QThread::currentThread();
        for (int i = 1; i <= m_steps && !progress.isCancelled(); ++i) {
            if (m_sleepUs)
                QThread::usleep(m_sleepUs);
            progress.report(double(i) / m_steps);
            done = i;
        }
    }
    std::atomic<int> done{0};
    std::atomic<QThread*> thread{nullptr};

private:
    int m_steps;
    int m_sleepUs;
};

// Blocks a pool thread until released.
class Blocker : public Task::IExecutor
{
public:
    void run(Task::Progress& progress) override
    {
        started = true;
        while (!release && !progress.isCancelled())
            QThread::usleep(200);
    }
    std::atomic_bool started{false};
    std::atomic_bool release{false};
};

class Recorder : public Task::TaskWatcher
{
public:
    QList<Task::TaskId> started;
    QList<Task::TaskId> finished;
    QList<bool> cancelled;
    QList<double> progress;
    QList<QThread*> threads;

protected:
    void taskStarted(Task::TaskId id) override
    {
        started << id;
        threads << QThread::currentThread();
    }
    void taskProgress(Task::TaskId, double fraction) override { progress << fraction; }
    void taskFinished(Task::TaskId id, const std::shared_ptr<Task::IExecutor>&, bool wasCancelled) override
    {
        finished << id;
        cancelled << wasCancelled;
        threads << QThread::currentThread();
    }
};

} // namespace

class TestTask : public QObject
{
    Q_OBJECT

private slots:
    void runsOffTheCallerThreadAndReportsOnIt()
    {
        Recorder watcher;
        auto counter = std::make_shared<Counter>(200);
        const Task::TaskId id = watcher.submit(counter);
        QCOMPARE(watcher.tasks(), QList<Task::TaskId>{id});
        QVERIFY(QTest::qWaitFor([&] { return !watcher.finished.isEmpty(); }, 5000));
        QCOMPARE(watcher.started, QList<Task::TaskId>{id});
        QCOMPARE(watcher.finished, QList<Task::TaskId>{id});
        QCOMPARE(watcher.cancelled, QList<bool>{false});
        QCOMPARE(counter->done.load(), 200);
        QVERIFY(counter->thread != QThread::currentThread());
        for (QThread* thread : qAsConst(watcher.threads))
            QCOMPARE(thread, QThread::currentThread());
        QVERIFY(watcher.tasks().isEmpty());
        // Throttled to about one notice per percent, rising, ending at 1.
        QVERIFY(!watcher.progress.isEmpty() && watcher.progress.size() <= 101);
        QCOMPARE(watcher.progress.last(), 1.0);
        QVERIFY(std::is_sorted(watcher.progress.cbegin(), watcher.progress.cend()));
    }

    void cancelStopsOneOrAll_data()
    {
        QTest::addColumn<bool>("all");
        QTest::newRow("cancel(id)") << false;
        QTest::newRow("cancelAll") << true;
    }

    void cancelStopsOneOrAll()
    {
        QFETCH(bool, all);
        Recorder watcher;
        auto first = std::make_shared<Counter>(1000000, 50);
        auto second = std::make_shared<Counter>(1000000, 50);
        const Task::TaskId a = watcher.submit(first);
        const Task::TaskId b = watcher.submit(second);
        QCOMPARE(watcher.tasks(), (QList<Task::TaskId>{a, b}));
        QVERIFY(QTest::qWaitFor([&] { return first->done > 0 && second->done > 0; }, 5000));
        if (all) {
            watcher.cancelAll();
        } else {
            watcher.cancel(a);
        }
        QVERIFY(QTest::qWaitFor([&] { return watcher.finished.contains(a); }, 5000));
        QCOMPARE(watcher.cancelled.at(watcher.finished.indexOf(a)), true);
        QVERIFY(first->done < 1000000);
        if (!all) {
            QCOMPARE(watcher.tasks(), QList<Task::TaskId>{b});
            watcher.cancel(b);
        }
        QVERIFY(QTest::qWaitFor([&] { return watcher.tasks().isEmpty(); }, 5000));
    }

    // The watcher's destructor waits for the running task to stop and drops its notices;
    // a task still queued behind busy threads never runs.
    void destroyingTheWatcherEndsItsTasks()
    {
        Recorder busy;
        QList<std::shared_ptr<Blocker>> blockers;
        for (int i = 0; i < Task::threadPool().maxThreadCount(); ++i) {
            blockers << std::make_shared<Blocker>();
            busy.submit(blockers.last());
        }
        QVERIFY(QTest::qWaitFor([&] {
            return std::all_of(blockers.cbegin(), blockers.cend(), [](const auto& b) { return b->started.load(); });
        }, 5000));

        auto queued = std::make_shared<Counter>(10);
        {
            Recorder watcher;
            watcher.submit(queued);
        }
        for (const auto& blocker : qAsConst(blockers))
            blocker->release = true;
        QVERIFY(QTest::qWaitFor([&] { return busy.tasks().isEmpty(); }, 5000));
        QTest::qWait(20);
        QCOMPARE(queued->done.load(), 0);

        auto running = std::make_shared<Counter>(100000000, 10);
        {
            Recorder watcher;
            watcher.submit(running);
            QVERIFY(QTest::qWaitFor([&] { return running->done > 0; }, 5000));
        }
        const int stoppedAt = running->done;
        QTest::qWait(20);
        QCOMPARE(running->done.load(), stoppedAt);
    }

    // Work beside the caller runs once: on a pool thread while one is free, else on the
    // thread that waits for it (never behind the pool's queue); wait() returns after it.
    void besideRunsOnceWhereAThreadIsFree_data()
    {
        QTest::addColumn<bool>("poolBusy");
        QTest::newRow("free pool") << false;
        QTest::newRow("busy pool") << true;
    }

    void besideRunsOnceWhereAThreadIsFree()
    {
        QFETCH(bool, poolBusy);
        std::atomic_bool release{false};
        std::atomic_int blocked{0};
        const int blockers = poolBusy ? Task::threadPool().maxThreadCount() : 0;
        for (int i = 0; i < blockers; ++i) {
            Task::threadPool().start([&] {
                ++blocked;
                while (!release)
                    QThread::msleep(1);
            });
        }
        QTRY_COMPARE(blocked.load(), blockers);
        std::atomic_int runs{0};
        QThread* ranOn = nullptr;
        {
            Task::Beside beside([&] {
                ++runs;
                ranOn = QThread::currentThread();
            });
            if (!poolBusy)
                QTRY_COMPARE(runs.load(), 1);
            beside.wait();
            QCOMPARE(runs.load(), 1);
        }
        release = true;
        QVERIFY(Task::threadPool().waitForDone(5000));
        QCOMPARE(runs.load(), 1);
        QCOMPARE(ranOn == QThread::currentThread(), poolBusy);
    }

    void reportClampsAndIgnoresNullExecutors()
    {
        Task::Progress progress;
        progress.report(2.0);
        QCOMPARE(progress.fraction(), 1.0);
        progress.report(-1.0);
        QCOMPARE(progress.fraction(), 0.0);
        Recorder watcher;
        QCOMPARE(watcher.submit(nullptr), Task::TaskId(0));
        QVERIFY(watcher.tasks().isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestTask)
#include "tst_task.moc"
