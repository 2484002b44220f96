#include <App/PowerManager.h>

#include <QProcess>
#include <QtTest>

#include "PrivateSessionBus.h"
#include "TestSandbox.h"

// The default power manager against a private session bus (a dbus-daemon started here) and
// a helper process that plays the desktop's inhibition services and checks every cookie it
// gets back.
class TestDBusPowerManager : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        if (!KvTest::PrivateSessionBus::available())
            QSKIP("dbus-daemon is not installed");
        QVERIFY(m_bus.start());
        // Before the first use of the session bus in this process, and for the helper.
        qputenv("DBUS_SESSION_BUS_ADDRESS", m_bus.address());
        // A service that never answers is given up quickly.
        qputenv("KLIPVANE_POWER_DBUS_TIMEOUT_MS", "300");
    }

    void cleanup() { KvTest::stopProcess(m_services); }

    void inhibitsAndReleases_data()
    {
        QTest::addColumn<QStringList>("services");
        QTest::addColumn<QStringList>("expected");
        const QString request = QStringLiteral("/org/freedesktop/portal/desktop/request/kv41");
        QTest::newRow("screensaver") << QStringList{QStringLiteral("screensaver:answer")}
                                     << QStringList{QStringLiteral("Inhibit screensaver 41"), QStringLiteral("UnInhibit screensaver 41 ok")};
        QTest::newRow("power management") << QStringList{QStringLiteral("powermanagement:answer")}
                                          << QStringList{QStringLiteral("Inhibit powermanagement 41"),
                                                         QStringLiteral("UnInhibit powermanagement 41 ok")};
        QTest::newRow("session manager, idle and suspend") << QStringList{QStringLiteral("gnome:answer")}
                                                           << QStringList{QStringLiteral("Inhibit gnome 41 xid=0 flags=12"),
                                                                          QStringLiteral("Uninhibit gnome 41 ok")};
        QTest::newRow("portal request closed") << QStringList{QStringLiteral("portal:answer")}
                                               << QStringList{QStringLiteral("Inhibit portal %1 flags=12").arg(request),
                                                              QStringLiteral("Close portal %1 ok").arg(request)};
        QTest::newRow("session manager before screensaver")
            << QStringList{QStringLiteral("screensaver:answer"), QStringLiteral("gnome:answer")}
            << QStringList{QStringLiteral("Inhibit gnome 41 xid=0 flags=12"), QStringLiteral("Uninhibit gnome 41 ok")};
        QTest::newRow("silent session manager, then screensaver")
            << QStringList{QStringLiteral("gnome:silent"), QStringLiteral("screensaver:answer")}
            << QStringList{QStringLiteral("Inhibit gnome unanswered"), QStringLiteral("Inhibit screensaver 41"),
                           QStringLiteral("UnInhibit screensaver 41 ok")};
        QTest::newRow("refusing portal, then power management")
            << QStringList{QStringLiteral("portal:refuse"), QStringLiteral("powermanagement:answer")}
            << QStringList{QStringLiteral("Inhibit portal refused"), QStringLiteral("Inhibit powermanagement 41"),
                           QStringLiteral("UnInhibit powermanagement 41 ok")};
    }

    void inhibitsAndReleases()
    {
        QFETCH(QStringList, services);
        QFETCH(QStringList, expected);
        startServices(services);
        auto manager = Tavrin::App::CreateDefaultImplPowerManager();
        manager->SuppressPowerSaving();
        QVERIFY(waitForLines(expected.size() - 1));
        manager->RestorePowerSaving();
        QVERIFY(waitForLines(expected.size()));
        QCOMPARE(m_lines, expected);
    }

    void oneInhibitionWhileAnyUserSuppresses()
    {
        startServices({QStringLiteral("screensaver:answer")});
        {
            Tavrin::App::MultiUserPowerManager shared(Tavrin::App::CreateDefaultImplPowerManager());
            auto playback = shared.GetPowerManager("playback");
            auto render = shared.GetPowerManager("render");
            playback->SuppressPowerSaving();
            render->SuppressPowerSaving();
            QVERIFY(waitForLines(1));
            playback->RestorePowerSaving();
            playback->SuppressPowerSaving();
            playback->RestorePowerSaving();
            render.reset(); // the last user goes while suppressing
            QVERIFY(waitForLines(2));
        }
        // Calls of this process reach the helper in order: once this one is seen, nothing
        // from the shared manager is still on its way.
        syncWithServices();
        QCOMPARE(m_lines.mid(0, 2), (QStringList{QStringLiteral("Inhibit screensaver 41"), QStringLiteral("UnInhibit screensaver 41 ok")}));
    }

    // A manager that goes releases what it holds, and what an answer still on its way
    // hands it (it waits for that answer, then gives the handle back).
    void destructionReleases_data()
    {
        QTest::addColumn<QString>("behaviour");
        QTest::addColumn<int>("lines"); // the helper's, to the release
        QTest::newRow("answered") << QStringLiteral("portal:answer") << 2;
        QTest::newRow("answer on its way") << QStringLiteral("portal:late") << 3;
    }

    void destructionReleases()
    {
        QFETCH(QString, behaviour);
        QFETCH(int, lines);
        startServices({behaviour});
        auto manager = Tavrin::App::CreateDefaultImplPowerManager();
        manager->SuppressPowerSaving();
        QVERIFY(waitForLines(1));
        manager.reset();
        QVERIFY(waitForLines(lines));
        QCOMPARE(m_lines.last(), QStringLiteral("Close portal /org/freedesktop/portal/desktop/request/kv41 ok"));
    }

    void restoredWhileTheServiceIsSilent()
    {
        startServices({QStringLiteral("gnome:silent"), QStringLiteral("screensaver:answer")});
        auto manager = Tavrin::App::CreateDefaultImplPowerManager();
        manager->SuppressPowerSaving();
        QVERIFY(waitForLines(1));
        manager->RestorePowerSaving(); // while the call to the silent service is out
        // A second manager goes the same way. Had the first gone on to the screensaver once
        // its call timed out, the cookie released here would not be the first one given.
        auto second = Tavrin::App::CreateDefaultImplPowerManager();
        second->SuppressPowerSaving();
        QVERIFY(waitForLines(3));
        second.reset();
        QVERIFY(waitForLines(4));
        QCOMPARE(m_lines, (QStringList{QStringLiteral("Inhibit gnome unanswered"), QStringLiteral("Inhibit gnome unanswered"),
                                       QStringLiteral("Inhibit screensaver 41"), QStringLiteral("UnInhibit screensaver 41 ok")}));
    }

    void noServiceAtAll()
    {
        startServices({});
        auto manager = Tavrin::App::CreateDefaultImplPowerManager();
        manager->SuppressPowerSaving();
        manager->RestorePowerSaving();
        manager.reset();
        startServices({QStringLiteral("screensaver:answer")});
        syncWithServices();
        QCOMPARE(m_lines.first(), QStringLiteral("Inhibit screensaver 41"));
    }

private:
    void startServices(const QStringList& services)
    {
        KvTest::stopProcess(m_services);
        m_lines.clear();
        m_services.setProgram(QString::fromLocal8Bit(qgetenv("KLIPVANE_TEST_BIN_DIR")) + QStringLiteral("/kv_inhibitservices"));
        m_services.setArguments(services);
        m_services.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_services.start();
        QVERIFY(m_services.waitForStarted(5000));
        QVERIFY(QTest::qWaitFor([this] { return m_services.canReadLine(); }, 5000));
        QCOMPARE(m_services.readLine().trimmed(), QByteArray("ready"));
    }

    bool waitForLines(int count)
    {
        return QTest::qWaitFor([&] {
            while (m_services.canReadLine())
                m_lines << QString::fromUtf8(m_services.readLine().trimmed());
            return m_lines.size() >= count;
        }, 10000);
    }

    // A round trip of a new manager: everything this process sent before has been seen.
    void syncWithServices()
    {
        const int before = m_lines.size();
        auto manager = Tavrin::App::CreateDefaultImplPowerManager();
        manager->SuppressPowerSaving();
        QVERIFY(QTest::qWaitFor([&] {
            while (m_services.canReadLine())
                m_lines << QString::fromUtf8(m_services.readLine().trimmed());
            for (int i = before; i < m_lines.size(); ++i) {
                if (m_lines.at(i).startsWith(QLatin1String("Inhibit")) && !m_lines.at(i).endsWith(QLatin1String("unanswered")))
                    return true;
            }
            return false;
        }, 10000));
        manager.reset();
    }

    KvTest::PrivateSessionBus m_bus;
    QProcess m_services;
    QStringList m_lines;
};

QTEST_GUILESS_MAIN(TestDBusPowerManager)
#include "tst_dbuspowermanager.moc"
