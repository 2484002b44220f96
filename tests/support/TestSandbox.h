#pragma once

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

// Included in a test's .cpp, points every per-user folder of the process (configuration,
// logs, runtime, IPC sockets, the desktop's caches) at a throw-away folder before main()
// runs: a test never touches the user's files, tests run in parallel, and children started
// by a test inherit it.
namespace KvTest {

inline QTemporaryDir& sandbox()
{
    static QTemporaryDir dir(QDir::tempPath() + QStringLiteral("/kvtest-XXXXXX"));
    return dir;
}

inline void enterSandbox()
{
    const std::pair<const char*, const char*> folders[] = {
        {"config", "KLIPVANE_CONFIG_DIR"}, {"log", "KLIPVANE_LOG_DIR"},
        {"runtime", "XDG_RUNTIME_DIR"}, {"ipc", "KLIPVANE_IPC_DIR"},
        {"cache", "XDG_CACHE_HOME"}};
    for (const auto& [sub, variable] : folders) {
        const QString folder = sandbox().filePath(QLatin1String(sub));
        QDir().mkpath(folder);
        // Sockets and the runtime folder must be private, as the session's own are.
        QFile::setPermissions(folder, QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
        qputenv(variable, QFile::encodeName(folder));
    }
}

Q_CONSTRUCTOR_FUNCTION(enterSandbox)

} // namespace KvTest
