#include <Util/Scheduler.h>

#include <QtTest>

#include "TestSandbox.h"

using Tavrin::Util::Scheduler;
using Tavrin::Util::SchedulerBase;

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
    void coalescesRequestsOfOneTurn_data();
    void coalescesRequestsOfOneTurn();
    void runsOnALaterTurnNotInsideSchedule();
    void requestFromTheFunctionRunsAgainLater();
    void disablingDropsAPendingRequest();
    void disabledSchedulerIgnoresRequests();
};

void TestScheduler::coalescesRequestsOfOneTurn_data()
{
    QTest::addColumn<int>("requests");
    QTest::newRow("one") << 1;
    QTest::newRow("two") << 2;
    QTest::newRow("many") << 100;
}

void TestScheduler::coalescesRequestsOfOneTurn()
{
    QFETCH(int, requests);
    Counter counter;
    Scheduler<Counter> scheduler(&counter, &Counter::run);
    QCOMPARE(scheduler.state(), 2);
    for (int i = 0; i < requests; ++i) {
        scheduler.schedule();
        QCOMPARE(scheduler.state(), 6);
    }
    QCOMPARE(counter.calls, 0);
    QVERIFY(QTest::qWaitFor([&] { return counter.calls > 0; }));
    settle();
    QCOMPARE(counter.calls, 1);
    QCOMPARE(scheduler.state(), 2);
}

void TestScheduler::runsOnALaterTurnNotInsideSchedule()
{
    Counter counter;
    Scheduler<Counter> scheduler(&counter, &Counter::run);
    scheduler.schedule();
    // Nothing runs inside schedule(): the call waits for the event loop.
    QCOMPARE(counter.calls, 0);
    QVERIFY(scheduler.isPending());
    settle();
    QCOMPARE(counter.calls, 1);
    QVERIFY(!scheduler.isPending());

    // Once idle again, a new request is a new call.
    scheduler.schedule();
    settle();
    QCOMPARE(counter.calls, 2);
}

void TestScheduler::requestFromTheFunctionRunsAgainLater()
{
    Counter counter;
    Scheduler<Counter> scheduler(&counter, &Counter::run);
    // Pending is cleared before the function runs, so a request made from inside it is a
    // new request, not a lost one.
    counter.onRun = [&] {
        QCOMPARE(scheduler.state(), 2);
        if (counter.calls == 1)
            scheduler.schedule();
    };
    scheduler.schedule();
    QVERIFY(QTest::qWaitFor([&] { return counter.calls == 2; }));
    settle();
    QCOMPARE(counter.calls, 2);
}

void TestScheduler::disablingDropsAPendingRequest()
{
    Counter counter;
    Scheduler<Counter> scheduler(&counter, &Counter::run);
    scheduler.schedule();
    QCOMPARE(scheduler.state(), 6);
    scheduler.setEnabled(false);
    QCOMPARE(scheduler.state(), 4);
    settle();
    QCOMPARE(counter.calls, 0);
    QCOMPARE(scheduler.state(), 0);

    // Enabled again, it works as new.
    scheduler.setEnabled(true);
    QCOMPARE(scheduler.state(), 2);
    scheduler.schedule();
    settle();
    QCOMPARE(counter.calls, 1);
}

void TestScheduler::disabledSchedulerIgnoresRequests()
{
    Counter counter;
    Scheduler<Counter> scheduler(&counter, &Counter::run);
    scheduler.setEnabled(false);
    scheduler.schedule();
    QCOMPARE(scheduler.state(), 0);
    settle();
    QCOMPARE(counter.calls, 0);
    // A request made while disabled is not remembered for later.
    scheduler.setEnabled(true);
    settle();
    QCOMPARE(counter.calls, 0);
}

QTEST_GUILESS_MAIN(TestScheduler)
#include "tst_scheduler.moc"
