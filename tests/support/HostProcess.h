#pragma once

#include <QByteArray>
#include <QCoreApplication>
#include <QDir>
#include <QDeadlineTimer>
#include <QFile>
#include <QProcess>
#include <QProcessEnvironment>
#include <QRegularExpression>
#include <QStringList>
#include <QTemporaryDir>

#include <csignal>

#include <unistd.h>

// What tests that start the real reference host share: where its executables are, a
// private set of per-user folders for a launch, and reading the host's log lines.
namespace KvTest {

// An executable built with the tests (the host, tools, helpers).
inline QString builtProgram(const QString& name)
{
    const QString folder = qEnvironmentVariable("KLIPVANE_TEST_BIN_DIR");
    return (folder.isEmpty() ? QCoreApplication::applicationDirPath() : folder) + QLatin1Char('/') + name;
}

// The environment of an offscreen host launch whose settings, logs, runtime folder and IPC
// sockets all live in `home`: a launch never meets the user's editor or another test's.
inline QProcessEnvironment hostEnvironment(const QTemporaryDir& home)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    const std::pair<const char*, const char*> folders[] = {
        {"config", "KLIPVANE_CONFIG_DIR"}, {"log", "KLIPVANE_LOG_DIR"},
        {"runtime", "XDG_RUNTIME_DIR"}, {"ipc", "KLIPVANE_IPC_DIR"},
        {"cache", "XDG_CACHE_HOME"}};
    for (const auto& [sub, variable] : folders) {
        const QString folder = home.filePath(QString::fromLatin1(sub));
        QDir().mkpath(folder);
        // Private, as the session's own runtime and socket folders are.
        QFile::setPermissions(folder, QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
        environment.insert(QString::fromLatin1(variable), folder);
    }
    return environment;
}

// The text after `prefix` on each glog line of `log` whose message starts with it, in order
// ("command: " gives "AddFiles /a.mp4", "ShowMainWindow", ...).
inline QStringList logged(const QByteArray& log, const QString& prefix)
{
    const QRegularExpression line(QLatin1String("\\] ") + QRegularExpression::escape(prefix) + QLatin1String("(.*)$"));
    QStringList found;
    for (const QByteArray& raw : log.split('\n')) {
        const auto match = line.match(QString::fromUtf8(raw.trimmed()));
        if (match.hasMatch())
            found << match.captured(1);
    }
    return found;
}

// A host process whose stderr (its log) is collected as it goes. Ends the process it started
// when it goes out of scope.
class Host : public QProcess
{
public:
    // `program` is the host itself or a command that ends by executing it (prlimit); `folder`,
    // when given, is the launch's working folder (relative names on the command line).
    Host(const QProcessEnvironment& environment, const QString& program, const QStringList& arguments,
         const QString& folder = QString())
    {
        setProcessEnvironment(environment);
        if (!folder.isEmpty())
            setWorkingDirectory(folder);
        start(program, arguments);
    }
    ~Host() override
    {
        if (!running())
            return;
        ::kill(pid_t(processId()), SIGCONT); // in case a test stopped it
        terminate();
        if (!waitForFinished(5000)) {
            kill();
            waitForFinished(5000);
        }
    }

    // Waits until the log contains `text`; false when the time is up or the process ended.
    bool waitForLog(const QByteArray& text, int timeoutMs = 30000)
    {
        const QDeadlineTimer deadline(timeoutMs);
        while (!log().contains(text) && !deadline.hasExpired() && running())
            waitForReadyRead(50);
        return log().contains(text);
    }
    const QByteArray& log() { return m_log += readAllStandardError(); }
    // See KvTest::logged.
    QStringList logged(const QString& prefix) { return KvTest::logged(log(), prefix); }
    // The IPC commands it carried out ("AddFiles /a.mp4 /b.mp4", "ShowMainWindow", ...).
    QStringList commands() { return logged(QStringLiteral("command: ")); }
    // The files of its "AddFiles" commands, one entry per command.
    QStringList added()
    {
        static const QRegularExpression addFiles(QStringLiteral("^AddFiles "));
        return commands().filter(addFiles).replaceInStrings(addFiles, QString());
    }
    // The exit code, or -1 when it crashed or was killed.
    int code() const { return exitStatus() == NormalExit ? exitCode() : -1; }
    bool running() const { return state() != NotRunning; }

private:
    QByteArray m_log;
};

// Runs the host in `home` to its end: its exit code (-1 when it crashed or had to be ended
// after `timeoutMs`), and everything it wrote in `log`.
inline int runHostToEnd(const QTemporaryDir& home, const QStringList& arguments, QByteArray& log, int timeoutMs = 60000)
{
    QProcess host;
    host.setProcessEnvironment(hostEnvironment(home));
    host.setProcessChannelMode(QProcess::MergedChannels);
    host.start(builtProgram(QStringLiteral("klipvane")), arguments);
    if (!host.waitForFinished(timeoutMs)) {
        host.kill();
        host.waitForFinished();
        return -1;
    }
    log = host.readAll();
    return host.exitStatus() == QProcess::NormalExit ? host.exitCode() : -1;
}

} // namespace KvTest
