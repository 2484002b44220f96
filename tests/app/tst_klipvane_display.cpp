// The OpenGL switch and power saving on the real host: a switch restarts the editor into the
// new implementation; a first start that crashes or hangs is followed by a start that goes
// back and says why; power saving is inhibited over a private session bus (a dbus-daemon
// started here) whose inhibition services a helper process plays.

#include "HostProcess.h"
#include "PrivateSessionBus.h"
#include "TestSandbox.h"

#include <QDir>
#include <QSettings>
#include <QTemporaryDir>
#include <QtTest>

#include <csignal>
#include <memory>

namespace {

// Everything the host processes of one home logged, one file per run.
QByteArray allLogs(const QTemporaryDir& home)
{
    QByteArray all;
    const QDir folder(home.filePath(QStringLiteral("log")));
    for (const QString& name : folder.entryList({QStringLiteral("*.log")}, QDir::Files, QDir::Name)) {
        QFile file(folder.filePath(name));
        if (file.open(QIODevice::ReadOnly))
            all += file.readAll();
    }
    return all;
}

bool waitForLogs(const QTemporaryDir& home, const QList<QByteArray>& texts, int timeoutMs = 30000)
{
    return QTest::qWaitFor([&] {
        const QByteArray logs = allLogs(home);
        for (const QByteArray& text : texts) {
            if (!logs.contains(text))
                return false;
        }
        return true;
    }, timeoutMs);
}

QString recordedImplementation(const QTemporaryDir& home)
{
    QSettings settings(home.filePath(QStringLiteral("config/klipvane.ini")), QSettings::IniFormat);
    return settings.value(QStringLiteral("OpenGL/Implementation")).toString();
}

} // namespace

class TestKlipvaneDisplay : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        if (!KvTest::PrivateSessionBus::available())
            QSKIP("dbus-daemon is not installed");
        QVERIFY(m_bus.start());
        m_address = QString::fromUtf8(m_bus.address());
    }

    void cleanup()
    {
        KvTest::stopProcess(m_services);
        // Editors started by the hosts of a test (restarts) end on their own; one still
        // running after its test is ended here, by the id it logged.
        for (qint64 pid : m_successors)
            ::kill(pid_t(pid), SIGKILL);
        m_successors.clear();
    }

    void aSwitchRestartsIntoTheNewImplementation()
    {
        QTemporaryDir home;
        auto environment = KvTest::hostEnvironment(home);
        environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), m_address);
        KvTest::Host first(environment, KvTest::builtProgram(QStringLiteral("klipvane")),
                           {QStringLiteral("--quit-after-ready"), QStringLiteral("4000"),
                            QStringLiteral("--request-opengl-silently"), QStringLiteral("software")});
        QVERIFY(first.waitForFinished(30000));
        QCOMPARE(first.exitCode(), 0);
        QCOMPARE(KvTest::logged(first.log(), QStringLiteral("opengl: ")).mid(0, 1), QStringList{QStringLiteral("hardware")});
        rememberSuccessor(first.log());
        QVERIFY(first.log().contains("opengl: restarting with software"));
        // The new process became the editor (it did not hand over to the old one) and
        // kept software after a good first start.
        QVERIFY2(waitForLogs(home, {"] opengl: software\n", "opengl: software kept after a good first start", "exit: 0"}),
                 allLogs(home).constData());
        QCOMPARE(recordedImplementation(home), QStringLiteral("software"));
        // The one-shot request was not repeated by the restarted editor.
        QCOMPARE(allLogs(home).count("opengl: restarting"), 1);
    }

    void aFailedFirstStartGoesBack_data()
    {
        QTest::addColumn<QString>("failure");
        QTest::newRow("crash") << QStringLiteral("--crash-with-opengl");
        QTest::newRow("hang") << QStringLiteral("--hang-with-opengl");
    }

    void aFailedFirstStartGoesBack()
    {
        QFETCH(QString, failure);
        QTemporaryDir home;
        auto environment = KvTest::hostEnvironment(home);
        environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), m_address);
        environment.insert(QStringLiteral("KLIPVANE_OPENGL_TRIAL_MS"), QStringLiteral("2000"));
        environment.insert(QStringLiteral("KLIPVANE_DISMISS_DIALOGS_MS"), QStringLiteral("200"));
        const QStringList arguments{QStringLiteral("--quit-after-ready"), QStringLiteral("3000"), failure, QStringLiteral("software")};
        KvTest::Host first(environment, KvTest::builtProgram(QStringLiteral("klipvane")),
                           arguments + QStringList{QStringLiteral("--request-opengl-silently"), QStringLiteral("software")});
        QVERIFY(first.waitForFinished(30000));
        rememberSuccessor(first.log());
        QVERIFY2(waitForLogs(home, {"as asked"}), allLogs(home).constData());

        if (failure == QLatin1String("--crash-with-opengl")) {
            // The crashed start leaves it to the next start, which the user makes.
            QVERIFY(QTest::qWaitFor([&] { return allLogs(home).contains("aborting with software"); }, 20000));
            KvTest::Host next(environment, KvTest::builtProgram(QStringLiteral("klipvane")), arguments);
            QVERIFY(next.waitForFinished(30000));
            QCOMPARE(next.exitCode(), 0);
        } else {
            // The hung start is ended by its watchdog, which starts the editor again.
            QVERIFY2(waitForLogs(home, {"did not get ready within 2000 ms"}), allLogs(home).constData());
            rememberSuccessor(allLogs(home));
        }
        QVERIFY2(waitForLogs(home, {"opengl: the first start with software did not get ready; going back to hardware",
                                    "opengl: going back to hardware after software failed to start",
                                    "dialog: showWarning \"OpenGL\"", "exit: 0"}),
                 allLogs(home).constData());
        QCOMPARE(recordedImplementation(home), QStringLiteral("hardware"));
    }

    void powerSavingOverTheSessionBus_data()
    {
        QTest::addColumn<QStringList>("services");
        QTest::addColumn<QString>("inhibitMs");
        QTest::addColumn<QStringList>("hostLines");
        QTest::addColumn<QStringList>("serviceLines");
        QTest::newRow("inhibited, then released")
            << QStringList{QStringLiteral("screensaver:answer")} << QStringLiteral("300")
            << QStringList{QStringLiteral("inhibited via org.freedesktop.ScreenSaver"), QStringLiteral("released")}
            << QStringList{QStringLiteral("Inhibit screensaver 41"), QStringLiteral("UnInhibit screensaver 41 ok")};
        QTest::newRow("released at exit")
            << QStringList{QStringLiteral("gnome:answer")} << QStringLiteral("600000")
            << QStringList{QStringLiteral("inhibited via org.gnome.SessionManager"), QStringLiteral("released")}
            << QStringList{QStringLiteral("Inhibit gnome 41 xid=0 flags=12"), QStringLiteral("Uninhibit gnome 41 ok")};
        QTest::newRow("a service that never answers")
            << QStringList{QStringLiteral("portal:silent")} << QStringLiteral("2000")
            << QStringList{QStringLiteral("unavailable: no service accepted the inhibition")}
            << QStringList{QStringLiteral("Inhibit portal unanswered")};
        QTest::newRow("no session bus") << QStringList() << QStringLiteral("300")
                                        << QStringList{QStringLiteral("unavailable: no session bus")} << QStringList();
    }

    void powerSavingOverTheSessionBus()
    {
        QFETCH(QStringList, services);
        QFETCH(QString, inhibitMs);
        QFETCH(QStringList, hostLines);
        QFETCH(QStringList, serviceLines);
        QTemporaryDir home;
        auto environment = KvTest::hostEnvironment(home);
        const bool bus = !services.isEmpty();
        environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), bus ? m_address : QStringLiteral("unix:path=/nonexistent/kv-no-bus"));
        environment.insert(QStringLiteral("KLIPVANE_POWER_DBUS_TIMEOUT_MS"), QStringLiteral("500"));
        if (bus) {
            m_services.setProgram(KvTest::builtProgram(QStringLiteral("kv_inhibitservices")));
            m_services.setArguments(services);
            m_services.setProcessEnvironment(environment);
            m_services.start();
            QVERIFY(m_services.waitForStarted(5000));
            QVERIFY(QTest::qWaitFor([this] { return m_services.canReadLine(); }, 5000));
            QCOMPARE(m_services.readLine().trimmed(), QByteArray("ready"));
        }
        KvTest::Host host(environment, KvTest::builtProgram(QStringLiteral("klipvane")),
                          {QStringLiteral("--inhibit-ms"), inhibitMs, QStringLiteral("--quit-after-ready"), QStringLiteral("2500")});
        QVERIFY(host.waitForFinished(30000));
        QCOMPARE(host.exitCode(), 0);
        QCOMPARE(KvTest::logged(host.log(), QStringLiteral("power: ")), hostLines);
        QStringList seen;
        while (bus && (m_services.canReadLine() || m_services.waitForReadyRead(serviceLines.size() > seen.size() ? 5000 : 0))) {
            while (m_services.canReadLine())
                seen << QString::fromUtf8(m_services.readLine().trimmed());
        }
        QCOMPARE(seen, serviceLines);
    }

private:
    void rememberSuccessor(const QByteArray& log)
    {
        for (const QString& pid : KvTest::logged(log, QStringLiteral("opengl: started the new editor, process ")))
            m_successors << pid.toLongLong();
    }

    KvTest::PrivateSessionBus m_bus;
    QProcess m_services;
    QString m_address;
    QList<qint64> m_successors;
};

QTEST_GUILESS_MAIN(TestKlipvaneDisplay)
#include "tst_klipvane_display.moc"
