// The single-instance lock between real processes, its holder killed with SIGKILL.

#include "IpcTestSupport.h"

#include <App/SingleInstance.h>

#include <QtTest>

using Tavrin::App::SingleInstance;

class tst_SingleInstance : public QObject
{
    Q_OBJECT
private slots:
    void sharedWithinTheProcessUntilTheLastObjectGoes()
    {
        auto first = std::make_unique<SingleInstance>(QStringLiteral("shared"));
        SingleInstance second(QStringLiteral("shared"));
        QVERIFY(!first->isAnotherInstanceRunning());
        QVERIFY(!second.isAnotherInstanceRunning());
        QVERIFY(second.waitForOtherInstance(0));
        QVERIFY(first->lockFilePath().startsWith(m_env.ipcDir()));
        first.reset();
        // The second object still holds the key for the process.
        KvTest::Child other;
        other.start(helper(), {QStringLiteral("shared")});
        QVERIFY(other.waitForOutput(QStringLiteral("state: another")));
    }

    void killedHolderLeavesNothingBehind()
    {
        KvTest::Child holder;
        holder.start(helper(), {QStringLiteral("crash")});
        QVERIFY(holder.waitForOutput(QStringLiteral("state: holder")));
        SingleInstance me(QStringLiteral("crash"));
        QVERIFY(me.isAnotherInstanceRunning());
        QVERIFY(!me.waitForOtherInstance(20));

        holder.killHard();
        QVERIFY(holder.waitForExit());
        QVERIFY(me.waitForOtherInstance(5000));
        QVERIFY(!me.isAnotherInstanceRunning());
    }

private:
    static QString helper() { return QCoreApplication::applicationDirPath() + QStringLiteral("/lockholder"); }
    KvTest::IpcEnvironment m_env;
};

QTEST_GUILESS_MAIN(tst_SingleInstance)
#include "tst_singleinstance.moc"
