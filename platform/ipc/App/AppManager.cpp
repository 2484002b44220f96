#include "App/AppManager.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QStringList>
#include <QSysInfo>

#include <cerrno>
#include <cstring>
#include <map>
#include <mutex>
#include <signal.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

namespace Tavrin {
namespace App {
namespace {

const char kSeparator = '+';

std::string sanitized(const std::string& id)
{
    std::string out = id;
    for (char& c : out)
        if (c == kSeparator || c == '/' || c == '\0')
            c = '_';
    return out;
}

std::mutex& idsMutex()
{
    static std::mutex m;
    return m;
}

std::map<std::string, std::string>& currentIds()
{
    static auto* ids = new std::map<std::string, std::string>;
    return *ids;
}

// The shared temporary folder is writable by everyone, so its predictable name may have been
// taken first by another user (or be a link planted there). Only a missing entry or a real
// folder of this user will do.
bool mayUseSharedFolder(const QString& dir)
{
    struct stat st;
    if (::lstat(QFile::encodeName(dir).constData(), &st) != 0)
        return errno == ENOENT;
    return S_ISDIR(st.st_mode) && st.st_uid == ::getuid();
}

} // namespace

QString AppManager::SocketDirectory()
{
    const QString overridden = qEnvironmentVariable("KLIPVANE_IPC_DIR");
    if (!overridden.isEmpty())
        return QDir::cleanPath(overridden);
    const QString runtime = qEnvironmentVariable("XDG_RUNTIME_DIR");
    if (!runtime.isEmpty())
        return QDir::cleanPath(runtime) + QStringLiteral("/klipvane-ipc");
    const QString shared = QDir::cleanPath(QDir::tempPath()) + QStringLiteral("/klipvane-ipc-%1").arg(::getuid());
    if (mayUseSharedFolder(shared))
        return shared;
    // Every launch of this user makes the same choice, so the editor stays single. The host
    // name keeps machines sharing a home over the network apart.
    return QDir::cleanPath(QDir::homePath()) + QStringLiteral("/.cache/klipvane-ipc-")
        + QSysInfo::machineHostName().replace(QLatin1Char('/'), QLatin1Char('_'));
}

namespace {

bool ensurePrivateDirectory(const QString& dir, QString* error)
{
    const QByteArray path = QFile::encodeName(dir);
    if (::mkdir(path.constData(), 0700) != 0 && errno != EEXIST) {
        // The parent may be missing (a fresh runtime folder): create it, then ours privately.
        QDir().mkpath(QFileInfo(dir).absolutePath());
        if (::mkdir(path.constData(), 0700) != 0 && errno != EEXIST) {
            if (error)
                *error = QStringLiteral("cannot create %1: %2").arg(dir, QString::fromLocal8Bit(strerror(errno)));
            return false;
        }
    }
    struct stat st;
    if (::lstat(path.constData(), &st) != 0 || !S_ISDIR(st.st_mode)) {
        if (error)
            *error = QStringLiteral("%1 is not a directory").arg(dir);
        return false;
    }
    if (st.st_uid != ::getuid()) {
        if (error)
            *error = QStringLiteral("%1 belongs to uid %2, not to this user").arg(dir).arg(st.st_uid);
        return false;
    }
    if ((st.st_mode & 0077) != 0 && ::chmod(path.constData(), 0700) != 0) {
        if (error)
            *error = QStringLiteral("cannot make %1 private").arg(dir);
        return false;
    }
    return true;
}

} // namespace

bool AppManager::EnsureSocketDirectory(QString* error)
{
    const QString dir = SocketDirectory();
    if (ensurePrivateDirectory(dir, error))
        return true;
    // Another user may have taken the shared name between the look and the mkdir; the
    // choice then falls on the private folder.
    const QString again = SocketDirectory();
    return again != dir && ensurePrivateDirectory(again, error);
}

std::string AppManager::MakeConnectId(const std::string& productId, const std::string& appId)
{
    const quint32 nonce = QRandomGenerator::system()->generate();
    return sanitized(productId) + kSeparator + sanitized(appId) + kSeparator + std::to_string(::getpid()) + kSeparator
        + QString::number(nonce, 36).toStdString();
}

std::string AppManager::GetCurrentConnectId(const std::string& appId)
{
    std::lock_guard<std::mutex> lock(idsMutex());
    const auto it = currentIds().find(appId);
    return it == currentIds().end() ? std::string() : it->second;
}

void AppManager::SetCurrentConnectId(const std::string& appId, const std::string& connectId)
{
    std::lock_guard<std::mutex> lock(idsMutex());
    if (connectId.empty())
        currentIds().erase(appId);
    else
        currentIds()[appId] = connectId;
}

bool AppManager::IsValidAppId(const std::string& appId, const std::string& connectId)
{
    const ProductAppID id(connectId);
    return id.IsValid() && id.GetAppID() == sanitized(appId);
}

bool AppManager::IsProcessAlive(qint64 pid)
{
    if (pid <= 0)
        return false;
    if (::kill(pid_t(pid), 0) != 0 && errno != EPERM)
        return false;
    // A killed process stays a zombie until its parent reaps it; it listens no more.
    QFile stat(QStringLiteral("/proc/%1/stat").arg(pid));
    if (stat.open(QIODevice::ReadOnly)) {
        const QByteArray line = stat.readAll();
        const int end = line.lastIndexOf(')');
        if (end > 0 && end + 2 < line.size() && (line.at(end + 2) == 'Z' || line.at(end + 2) == 'X'))
            return false;
    }
    return true;
}

ProductAppID::ProductAppID(const std::string& connectId)
{
    const QStringList parts = QString::fromStdString(connectId).split(QLatin1Char(kSeparator));
    if (parts.size() != 4 || parts[0].isEmpty() || parts[1].isEmpty() || parts[3].isEmpty())
        return;
    bool ok = false;
    const qint64 pid = parts[2].toLongLong(&ok);
    if (!ok || pid <= 0)
        return;
    m_product = parts[0].toStdString();
    m_app = parts[1].toStdString();
    m_pid = pid;
    m_valid = true;
}

} // namespace App
} // namespace Tavrin
