#include <Util/Scheduler.h>

#include <QtTest>

#include "TestSandbox.h"

using Tavrin::Util::Scheduler;

namespace {

struct Counter
{
    void run()
    {
        ++calls;
        if (onRun)
            onRun();
    }
    int calls = 0;
    std::function<void()> onRun;
};

// Lets the event loop turn until a second scheduler, asked after everything under test,
// has fired: whatever the first one was going to do on those turns has been done.
void settle()
{
    Counter marker;
    Scheduler<Counter> sentinel(&marker, &Counter::run);
    sentinel.schedule();
    QVERIFY(QTest::qWaitFor([&] { return marker.calls == 1; }));
}

} // namespace

class TestScheduler : public QObject
{
    Q_OBJECT

private slots:
    void coalescesRequestsOfOneTurn_data()
    {
        QTest::addColumn<int>("requests");
        QTest::addColumn<bool>("againFromInside");
        QTest::addColumn<bool>("disable");
        QTest::addColumn<int>("calls");
        QTest::newRow("one") << 1 << false << false << 1;
        QTest::newRow("many") << 100 << false << false << 1;
        // Pending is cleared before the function runs: a request from inside it is a new one.
        QTest::newRow("again from inside") << 3 << true << false << 2;
        // Neither the pending request nor one made while disabled is remembered.
        QTest::newRow("disabled for a turn") << 3 << false << true << 0;
    }

    void coalescesRequestsOfOneTurn()
    {
        QFETCH(int, requests);
        QFETCH(bool, againFromInside);
        QFETCH(bool, disable);
        QFETCH(int, calls);
        Counter counter;
        Scheduler<Counter> scheduler(&counter, &Counter::run);
        counter.onRun = [&] {
            if (againFromInside && counter.calls == 1)
                scheduler.schedule();
        };
        for (int i = 0; i < requests; ++i)
            scheduler.schedule();
        if (disable) {
            scheduler.setEnabled(false);
            scheduler.schedule();
            settle();
            scheduler.setEnabled(true);
        }
        QCOMPARE(counter.calls, 0);
        QCOMPARE(scheduler.isPending(), !disable);
        QVERIFY(QTest::qWaitFor([&] { return counter.calls == calls; }));
        settle();
        QCOMPARE(counter.calls, calls);
        QVERIFY(!scheduler.isPending());
    }
};

QTEST_GUILESS_MAIN(TestScheduler)
#include "tst_scheduler.moc"
