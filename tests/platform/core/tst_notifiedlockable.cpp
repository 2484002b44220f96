#include <ExternalStimulus/NotifiedLockable.h>

#include <QtTest>

#include "TestSandbox.h"

using Lock = Tavrin::NotifiedLockableAdapter<Tavrin::RecursiveBoolLock>;

namespace {

// Counts each hook; the const ones count into mutable members.
class Counting : public Lock
{
public:
    int acquired = 0;
    int released = 0;
    mutable int constAcquired = 0;
    mutable int constReleased = 0;

protected:
    void on_lock_acquired() override { ++acquired; }
    void on_lock_released() override { ++released; }
    void on_lock_acquired() const override { ++constAcquired; }
    void on_lock_released() const override { ++constReleased; }
};

} // namespace

class TestNotifiedLockable : public QObject
{
    Q_OBJECT

private slots:
    void freshLockIsFree();
    void sequences_data();
    void sequences();
    void constObjectLocks();
};

void TestNotifiedLockable::freshLockIsFree()
{
    Counting lock;
    QVERIFY(!lock.is_locked());
    QCOMPARE(lock.lock_count(), std::uint64_t(0));
}

// Operations: L lock, U unlock, l lock through a const reference, u unlock through one.
void TestNotifiedLockable::sequences_data()
{
    QTest::addColumn<QString>("operations");
    QTest::addColumn<bool>("locked");
    QTest::addColumn<int>("count");
    QTest::addColumn<int>("acquired");
    QTest::addColumn<int>("released");
    QTest::addColumn<int>("constAcquired");
    QTest::addColumn<int>("constReleased");

    QTest::newRow("lock") << "L" << true << 1 << 1 << 0 << 0 << 0;
    QTest::newRow("lock unlock") << "LU" << false << 0 << 1 << 1 << 0 << 0;
    QTest::newRow("lock twice") << "LL" << true << 2 << 1 << 0 << 0 << 0;
    QTest::newRow("lock twice unlock once") << "LLU" << true << 1 << 1 << 0 << 0 << 0;
    QTest::newRow("lock twice unlock twice") << "LLUU" << false << 0 << 1 << 1 << 0 << 0;
    QTest::newRow("unlock when free") << "U" << false << 0 << 0 << 0 << 0 << 0;
    QTest::newRow("extra unlock does not go negative") << "LUUL" << true << 1 << 2 << 1 << 0 << 0;
    QTest::newRow("two rounds") << "LULLUU" << false << 0 << 2 << 2 << 0 << 0;
    QTest::newRow("const lock") << "l" << true << 1 << 0 << 0 << 1 << 0;
    QTest::newRow("const round") << "lu" << false << 0 << 0 << 0 << 1 << 1;
    QTest::newRow("const and plain share the count") << "Llu" << true << 1 << 1 << 0 << 0 << 0;
    QTest::newRow("const releases a plain lock") << "Lu" << false << 0 << 1 << 0 << 0 << 1;
    QTest::newRow("plain releases a const lock") << "lLUU" << false << 0 << 0 << 1 << 1 << 0;
}

void TestNotifiedLockable::sequences()
{
    QFETCH(QString, operations);
    Counting lock;
    const Counting& constLock = lock;
    for (const QChar op : operations) {
        switch (op.toLatin1()) {
        case 'L': lock.lock(); break;
        case 'U': lock.unlock(); break;
        case 'l': constLock.lock(); break;
        case 'u': constLock.unlock(); break;
        default: QFAIL("unknown operation");
        }
    }
    QTEST(lock.is_locked(), "locked");
    QTEST(int(lock.lock_count()), "count");
    QTEST(lock.acquired, "acquired");
    QTEST(lock.released, "released");
    QTEST(lock.constAcquired, "constAcquired");
    QTEST(lock.constReleased, "constReleased");
}

void TestNotifiedLockable::constObjectLocks()
{
    // A truly const object: the state must still change.
    const Counting lock;
    lock.lock();
    lock.lock();
    QVERIFY(lock.is_locked());
    lock.unlock();
    QVERIFY(lock.is_locked());
    lock.unlock();
    QVERIFY(!lock.is_locked());
    QCOMPARE(lock.constAcquired, 1);
    QCOMPARE(lock.constReleased, 1);
}

QTEST_GUILESS_MAIN(TestNotifiedLockable)
#include "tst_notifiedlockable.moc"
