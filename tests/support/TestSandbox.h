#pragma once

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtGlobal>

// Points every per-user folder of a test process (configuration, logs, runtime and IPC
// sockets) at a throw-away folder before main() runs, so that a test never reads or
// writes the user's own files and tests can run in parallel. Include it in the test's
// .cpp; children started by the test inherit the same environment.
namespace KvTest {

inline QTemporaryDir& sandbox()
{
    static QTemporaryDir dir(QDir::tempPath() + QStringLiteral("/kvtest-XXXXXX"));
    return dir;
}

inline void enterSandbox()
{
    const QByteArray root = QFile::encodeName(sandbox().path());
    for (const char* sub : {"config", "log", "runtime", "ipc"}) {
        const QString folder = sandbox().path() + QLatin1Char('/') + QString::fromLatin1(sub);
        QDir().mkpath(folder);
        // Sockets and the runtime folder must be private, as the session's own are.
        QFile::setPermissions(folder, QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
    }
    qputenv("KLIPVANE_CONFIG_DIR", root + "/config");
    qputenv("KLIPVANE_LOG_DIR", root + "/log");
    qputenv("XDG_RUNTIME_DIR", root + "/runtime");
    qputenv("KLIPVANE_IPC_DIR", root + "/ipc");
}

Q_CONSTRUCTOR_FUNCTION(enterSandbox)

} // namespace KvTest
