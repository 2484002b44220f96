#include <ExternalStimulus/Action.h>

#include <QtTest>

#include "TestSandbox.h"

#include <stdexcept>

using Tavrin::ExternalStimulus::Action;
using Tavrin::ExternalStimulus::ActionStorage;

class TestActionStorage : public QObject
{
    Q_OBJECT

private slots:
    void queueKeepsProposalOrder();
    void removeDropsEveryActionOfTheName();
    void actionAddedWhileRunningRunsInTheSameCall();
    void actionCancelledByARunningOneDoesNotRun();
    void busyWhileRunningAndReentryDoesNothing();
    void throwingActionDoesNotStopTheOthers();

private:
    Action record(const std::string& name)
    {
        return Action{name, [this, name] { m_log << QString::fromStdString(name); }};
    }
    QStringList m_log;
};

void TestActionStorage::queueKeepsProposalOrder()
{
    ActionStorage storage;
    QVERIFY(storage.IsEmpty());
    storage.Add(record("b"));
    storage.Add(record("a"));
    storage.Add(record("b"));
    QVERIFY(!storage.IsEmpty());
    const auto actions = storage.GetActions();
    QCOMPARE(actions.size(), size_t(3));
    QCOMPARE(actions[0].name, std::string("b"));
    QCOMPARE(actions[1].name, std::string("a"));
    QCOMPARE(actions[2].name, std::string("b"));
    QVERIFY(storage.IsBlocked("a"));
    QVERIFY(!storage.IsBlocked("A"));
    storage.Clear();
    QVERIFY(storage.IsEmpty());
    QVERIFY(!storage.IsBlocked("a"));
}

void TestActionStorage::removeDropsEveryActionOfTheName()
{
    ActionStorage storage;
    storage.Add(record("x"));
    storage.Add(record("y"));
    storage.Add(record("x"));
    storage.Remove("x");
    storage.Remove("not queued");
    QVERIFY(!storage.IsBlocked("x"));
    QCOMPARE(storage.GetActions().size(), size_t(1));
    m_log.clear();
    storage.ExecAll();
    QCOMPARE(m_log, QStringList{"y"});
}

void TestActionStorage::actionAddedWhileRunningRunsInTheSameCall()
{
    ActionStorage storage;
    m_log.clear();
    storage.Add(Action{"outer", [&] {
                           m_log << "outer";
                           storage.Add(record("inner"));
                           m_log << "outer done";
                       }});
    storage.Add(record("second"));
    storage.ExecAll();
    QCOMPARE(m_log, (QStringList{"outer", "outer done", "second", "inner"}));
    QVERIFY(storage.IsEmpty());
}

void TestActionStorage::actionCancelledByARunningOneDoesNotRun()
{
    ActionStorage storage;
    m_log.clear();
    storage.Add(Action{"first", [&] {
                           m_log << "first";
                           // Still waiting, so still reported as blocked.
                           QVERIFY(storage.IsBlocked("update"));
                           storage.Remove("update");
                       }});
    storage.Add(record("update"));
    storage.Add(record("last"));
    storage.ExecAll();
    QCOMPARE(m_log, (QStringList{"first", "last"}));
}

void TestActionStorage::busyWhileRunningAndReentryDoesNothing()
{
    ActionStorage storage;
    m_log.clear();
    bool busyInside = false;
    storage.Add(Action{"a", [&] {
                           busyInside = storage.IsBusy();
                           storage.ExecAll(); // must not run "b" nested inside "a"
                           m_log << "a";
                       }});
    storage.Add(record("b"));
    storage.ExecAll();
    QVERIFY(busyInside);
    QVERIFY(!storage.IsBusy());
    QCOMPARE(m_log, (QStringList{"a", "b"}));
}

void TestActionStorage::throwingActionDoesNotStopTheOthers()
{
    ActionStorage storage;
    m_log.clear();
    storage.Add(Action{"std", [] { throw std::runtime_error("broken"); }});
    storage.Add(record("after std"));
    storage.Add(Action{"other", [] { throw 42; }});
    storage.Add(record("after other"));
    storage.ExecAll();
    QCOMPARE(m_log, (QStringList{"after std", "after other"}));
    QVERIFY(!storage.IsBusy());
    QVERIFY(storage.IsEmpty());
}

QTEST_GUILESS_MAIN(TestActionStorage)
#include "tst_actionstorage.moc"
