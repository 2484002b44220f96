// Tavrin::App::SingleInstance between real processes: the flag, the wait, and a holder
// killed with SIGKILL.

#include "IpcTestSupport.h"

#include <App/SingleInstance.h>

#include <QtTest>

using Tavrin::App::SingleInstance;

class tst_SingleInstance : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase() { m_env = std::make_unique<KvTest::IpcEnvironment>(); }
    void cleanupTestCase() { m_env.reset(); }

    void objectsOfOneProcessShareTheKey()
    {
        SingleInstance first(QStringLiteral("shared"));
        SingleInstance second(QStringLiteral("shared"));
        QVERIFY(!first.isAnotherInstanceRunning());
        QVERIFY(!second.isAnotherInstanceRunning());
        QVERIFY(second.waitForOtherInstance(0));
        QVERIFY(QFileInfo::exists(first.lockFilePath()));
        QVERIFY(first.lockFilePath().startsWith(m_env->ipcDir()));
    }

    void anotherProcessSeesTheHolder()
    {
        SingleInstance holder(QStringLiteral("seen"));
        QVERIFY(!holder.isAnotherInstanceRunning());
        KvTest::Child other;
        other.start(helper(), {QStringLiteral("seen"), QStringLiteral("0")});
        QVERIFY(other.waitForExit());
        QVERIFY(other.output().contains("state: another"));
        QVERIFY(other.output().contains("waited: false"));
    }

    void releasedWhenTheLastObjectGoes()
    {
        auto holder = std::make_unique<SingleInstance>(QStringLiteral("released"));
        KvTest::Child waiter;
        // Waits without limit: the test ends it if the release were lost.
        waiter.start(helper(), {QStringLiteral("released"), QStringLiteral("-1")});
        QVERIFY(waiter.waitForOutput(QStringLiteral("state: another")));
        holder.reset();
        QVERIFY(waiter.waitForOutput(QStringLiteral("waited: true")));
    }

    void killedHolderLeavesNothingBehind()
    {
        KvTest::Child holder;
        holder.start(helper(), {QStringLiteral("crash")});
        QVERIFY(holder.waitForOutput(QStringLiteral("state: holder")));

        SingleInstance me(QStringLiteral("crash"));
        QVERIFY(me.isAnotherInstanceRunning());
        QVERIFY(!me.waitForOtherInstance(20));
        QVERIFY(me.isAnotherInstanceRunning());

        holder.killHard();
        QVERIFY(holder.waitForExit());
        QVERIFY(me.waitForOtherInstance(5000));
        QVERIFY(!me.isAnotherInstanceRunning());
    }

    void keysAreIndependent()
    {
        SingleInstance a(QStringLiteral("editor/one"));
        KvTest::Child other;
        other.start(helper(), {QStringLiteral("editor/two")});
        QVERIFY(other.waitForOutput(QStringLiteral("state: holder")));
    }

private:
    static QString helper() { return QCoreApplication::applicationDirPath() + QStringLiteral("/lockholder"); }
    std::unique_ptr<KvTest::IpcEnvironment> m_env;
};

QTEST_GUILESS_MAIN(tst_SingleInstance)
#include "tst_singleinstance.moc"
