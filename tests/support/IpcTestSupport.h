#pragma once

// Fixtures for tests that run several real processes over the inter-process layer.

#include "QueuedSpy.h"

#include <QCoreApplication>
#include <QDir>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QVariant>
#include <QtTest>

#include <glog/logging.h>

#include <csignal>
#include <memory>
#include <mutex>

namespace KvTest {

// Points every folder the IPC layer, logging and settings use at one throw-away folder.
// Child processes started afterwards inherit it.
class IpcEnvironment
{
public:
    IpcEnvironment()
    {
        const std::pair<const char*, const char*> folders[] = {
            {"ipc", "KLIPVANE_IPC_DIR"}, {"log", "KLIPVANE_LOG_DIR"},
            {"config", "KLIPVANE_CONFIG_DIR"}, {"run", "XDG_RUNTIME_DIR"}};
        for (const auto& [sub, variable] : folders) {
            QDir(m_root.path()).mkpath(QLatin1String(sub));
            qputenv(variable, QFile::encodeName(path(QLatin1String(sub))));
        }
        QFile::setPermissions(ipcDir(), QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
        qunsetenv("KLIPVANE_IPC_PARENT");
    }
    QString ipcDir() const { return path(QStringLiteral("ipc")); }
    QString path(const QString& name) const { return m_root.path() + QLatin1Char('/') + name; }

    // Socket files currently in the IPC folder.
    QStringList sockets() const
    {
        const QRegularExpression threeParts(QStringLiteral("^([^+]*\\+){3}[^+]*$"));
        return QDir(ipcDir()).entryList(QDir::System | QDir::NoDotAndDotDot).filter(threeParts);
    }

private:
    QTemporaryDir m_root;
};

inline QString binDir()
{
    const QString dir = qEnvironmentVariable("KLIPVANE_TEST_BIN_DIR");
    return dir.isEmpty() ? QCoreApplication::applicationDirPath() : dir;
}

// A child process whose merged output is collected, ended by its id when the test is done.
class Child
{
public:
    Child()
    {
        m_process.setProcessChannelMode(QProcess::MergedChannels);
        QObject::connect(&m_process, &QProcess::readyRead, [this] { m_output += m_process.readAll(); });
    }
    ~Child() { stop(); }

    void start(const QString& program, const QStringList& arguments) { m_process.start(program, arguments); }
    bool waitForOutput(const QString& text, int timeoutMs = 10000)
    {
        return QTest::qWaitFor([&] { return output().contains(text.toUtf8()); }, timeoutMs);
    }
    QByteArray output() { return m_output += m_process.readAll(); }
    qint64 pid() const { return m_process.processId(); }
    QProcess& process() { return m_process; }
    bool waitForExit(int timeoutMs = 10000)
    {
        return QTest::qWaitFor([&] { return m_process.state() == QProcess::NotRunning; }, timeoutMs);
    }
    void killHard() { m_process.kill(); }
    void stop()
    {
        if (m_process.state() == QProcess::NotRunning)
            return;
        ::kill(pid_t(m_process.processId()), SIGCONT); // in case a test stopped it
        m_process.terminate();
        if (!m_process.waitForFinished(3000)) {
            m_process.kill();
            m_process.waitForFinished(3000);
        }
    }

private:
    QProcess m_process;
    QByteArray m_output;
};

// Collects what glog writes while it is alive.
class LogCapture : public google::LogSink
{
public:
    LogCapture() { google::AddLogSink(this); }
    ~LogCapture() override { google::RemoveLogSink(this); }
    void send(google::LogSeverity severity, const char*, const char*, int, const struct ::tm*, const char* message,
              size_t size) override
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_lines << QString::fromLatin1("IWEF" + severity, 1) + QLatin1Char(' ') + QString::fromUtf8(message, int(size));
    }
    QStringList lines() const
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        return m_lines;
    }
    bool contains(const QString& text) const { return !lines().filter(text).isEmpty(); }
    bool waitFor(const QString& text, int timeoutMs = 5000) const
    {
        return QTest::qWaitFor([&] { return contains(text); }, timeoutMs);
    }

private:
    mutable std::mutex m_mutex;
    QStringList m_lines;
};

} // namespace KvTest
