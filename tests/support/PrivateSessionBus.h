#pragma once

#include <QByteArray>
#include <QProcess>
#include <QStandardPaths>
#include <QtTest>

// A session bus of the test's own: a dbus-daemon started by the test and ended with it, so
// D-Bus services and clients meet nothing of the user's desktop.
//
//   KvTest::PrivateSessionBus bus;
//   if (!bus.available()) QSKIP("dbus-daemon is not installed");
//   QVERIFY(bus.start());
//   qputenv("DBUS_SESSION_BUS_ADDRESS", bus.address()); // before this process's first bus use
namespace KvTest {

// Ends a child of the test, by its id.
inline void stopProcess(QProcess& process)
{
    if (process.state() == QProcess::NotRunning)
        return;
    process.kill();
    process.waitForFinished(5000);
}

class PrivateSessionBus
{
public:
    ~PrivateSessionBus() { stopProcess(m_daemon); }

    static bool available() { return !QStandardPaths::findExecutable(QStringLiteral("dbus-daemon")).isEmpty(); }

    bool start()
    {
        m_daemon.start(QStringLiteral("dbus-daemon"), {QStringLiteral("--session"), QStringLiteral("--nofork"),
                                                      QStringLiteral("--nopidfile"), QStringLiteral("--print-address=1")});
        if (!m_daemon.waitForStarted(5000) || !QTest::qWaitFor([this] { return m_daemon.canReadLine(); }, 5000))
            return false;
        m_address = m_daemon.readLine().trimmed();
        return !m_address.isEmpty();
    }

    const QByteArray& address() const { return m_address; }
    void stop() { stopProcess(m_daemon); }

private:
    QProcess m_daemon;
    QByteArray m_address;
};

} // namespace KvTest
