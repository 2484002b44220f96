#include "App/SingleInstance.h"

#include "App/AppManager.h"

#include <QElapsedTimer>
#include <QFile>
#include <QThread>

#include <glog/logging.h>

#include <cerrno>
#include <fcntl.h>
#include <map>
#include <mutex>
#include <sys/file.h>
#include <unistd.h>

namespace Tavrin {
namespace App {
namespace {

// One open lock file per key and process, shared by the objects of that key.
struct KeyLock
{
    int fd = -1;
    bool held = false;
    bool usable = false;

    ~KeyLock()
    {
        if (fd >= 0)
            ::close(fd);  // releases the flock
    }

    bool tryLock()
    {
        if (held || !usable)
            return held;
        int result;
        do {
            result = ::flock(fd, LOCK_EX | LOCK_NB);
        } while (result != 0 && errno == EINTR);
        held = result == 0;
        return held;
    }
};

std::mutex& locksMutex()
{
    static std::mutex m;
    return m;
}

std::map<QString, std::weak_ptr<KeyLock>>& locks()
{
    static auto* map = new std::map<QString, std::weak_ptr<KeyLock>>;
    return *map;
}

std::shared_ptr<KeyLock> lockFor(const QString& key)
{
    std::lock_guard<std::mutex> guard(locksMutex());
    if (auto existing = locks()[key].lock())
        return existing;
    auto lock = std::make_shared<KeyLock>();
    locks()[key] = lock;
    QString error;
    if (!AppManager::EnsureSocketDirectory(&error)) {
        LOG(ERROR) << "Single-instance lock for \"" << key.toStdString() << "\" unavailable: " << error.toStdString();
        return lock;
    }
    const QByteArray path = QFile::encodeName(SingleInstance::lockFilePathFor(key));
    lock->fd = ::open(path.constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (lock->fd < 0) {
        LOG(ERROR) << "Single-instance lock " << path.constData() << " cannot be opened: " << strerror(errno);
        return lock;
    }
    lock->usable = true;
    lock->tryLock();
    return lock;
}

} // namespace

struct SingleInstance::Impl
{
    QString key;
    std::shared_ptr<KeyLock> lock;
};

SingleInstance::SingleInstance(const QString& key, QObject* parent) : QObject(parent), d(std::make_unique<Impl>())
{
    d->key = key;
    d->lock = lockFor(key);
}

SingleInstance::~SingleInstance()
{
    std::lock_guard<std::mutex> guard(locksMutex());
    d->lock.reset();
}

bool SingleInstance::isAnotherInstanceRunning() const
{
    std::lock_guard<std::mutex> guard(locksMutex());
    return d->lock->usable && !d->lock->held;
}

bool SingleInstance::waitForOtherInstance(qint64 timeout)
{
    QElapsedTimer clock;
    clock.start();
    for (;;) {
        {
            std::lock_guard<std::mutex> guard(locksMutex());
            if (!d->lock->usable || d->lock->tryLock())
                return true;
        }
        const qint64 left = timeout < 0 ? 10 : timeout - clock.elapsed();
        if (left <= 0)
            return false;
        // flock() has no timed wait; a short poll keeps the wait bounded and cheap.
        QThread::msleep(static_cast<unsigned long>(qMin<qint64>(left, 10)));
    }
}

const QString& SingleInstance::key() const
{
    return d->key;
}

QString SingleInstance::lockFilePath() const
{
    return lockFilePathFor(d->key);
}

QString SingleInstance::lockFilePathFor(const QString& key)
{
    QString name;
    for (const QChar c : key)
        name += (c.isLetterOrNumber() && c.unicode() < 128) || c == QLatin1Char('-') || c == QLatin1Char('_') ? c : QLatin1Char('_');
    return AppManager::SocketDirectory() + QLatin1Char('/') + name + QStringLiteral(".lock");
}

} // namespace App
} // namespace Tavrin
