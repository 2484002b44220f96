#include <ExternalStimulus/NotifiedLockable.h>

#include <QtTest>

#include "TestSandbox.h"

using Lock = Tavrin::NotifiedLockableAdapter<Tavrin::RecursiveBoolLock>;

namespace {

// Logs each hook: A/R for acquired/released, a/r for the const ones.
class Logging : public Lock
{
public:
    mutable QString hooks;

protected:
    void on_lock_acquired() override { hooks += QLatin1Char('A'); }
    void on_lock_released() override { hooks += QLatin1Char('R'); }
    void on_lock_acquired() const override { hooks += QLatin1Char('a'); }
    void on_lock_released() const override { hooks += QLatin1Char('r'); }
};

} // namespace

class TestNotifiedLockable : public QObject
{
    Q_OBJECT

private slots:
    // Operations: L lock, U unlock, l lock through a const reference, u unlock through one.
    void sequences_data()
    {
        QTest::addColumn<QString>("operations");
        QTest::addColumn<int>("count");
        QTest::addColumn<QString>("hooks");
        QTest::newRow("lock twice unlock once") << "LLU" << 1 << "A";
        QTest::newRow("unlock when free") << "U" << 0 << "";
        QTest::newRow("extra unlock does not go negative") << "LUUL" << 1 << "ARA";
        QTest::newRow("const round") << "lu" << 0 << "ar";
        QTest::newRow("const and plain share the count") << "Llu" << 1 << "A";
        QTest::newRow("const releases a plain lock") << "Lu" << 0 << "Ar";
        QTest::newRow("plain releases a const lock") << "lLUU" << 0 << "aR";
    }

    void sequences()
    {
        QFETCH(QString, operations);
        QFETCH(int, count);
        Logging lock;
        const Logging& constLock = lock;
        for (const QChar op : operations) {
            switch (op.toLatin1()) {
            case 'L': lock.lock(); break;
            case 'U': lock.unlock(); break;
            case 'l': constLock.lock(); break;
            case 'u': constLock.unlock(); break;
            default: QFAIL("unknown operation");
            }
        }
        QCOMPARE(lock.is_locked(), count > 0);
        QCOMPARE(int(lock.lock_count()), count);
        QTEST(lock.hooks, "hooks");
    }
};

QTEST_GUILESS_MAIN(TestNotifiedLockable)
#include "tst_notifiedlockable.moc"
