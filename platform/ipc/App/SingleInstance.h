#pragma once

#include <QObject>
#include <QString>

#include <memory>

namespace Tavrin {
namespace App {

// Tells whether another process already runs under a key, with a lock a crash cannot
// leave behind: flock() on "<socket dir>/<key>.lock". The kernel drops the lock when the
// holding process ends in any way, kill -9 included, so there is nothing stale to detect.
//
// Construction tries the lock once without waiting. The state flag,
// isAnotherInstanceRunning(), is true when another *process* held the key at the last
// attempt, i.e. this process does not hold it; false means this process holds the key
// (or the lock could not be used at all, which is logged: then nobody is kept from
// starting). Objects of one process with the same key share one lock, so they all report
// false once any of them holds it. The lock is released when the last object of the key
// in this process is destroyed. The lock file is not inherited by child processes.
//
//   Tavrin::App::SingleInstance instance(QStringLiteral("klipvane-editor"));
//   if (instance.isAnotherInstanceRunning() && !instance.waitForOtherInstance(3000))
//       return forwardToRunningInstance();
class SingleInstance : public QObject
{
    Q_OBJECT
public:
    explicit SingleInstance(const QString& key, QObject* parent = nullptr);
    ~SingleInstance() override;

    bool isAnotherInstanceRunning() const;

    // Waits until the other process lets go of the key and takes it. `timeout` is in
    // milliseconds; 0 tries once, a negative value waits without limit. Returns true when
    // this process holds the key (at once if it already did); the state flag follows.
    bool waitForOtherInstance(qint64 timeout);

    const QString& key() const;
    QString lockFilePath() const;

    static QString lockFilePathFor(const QString& key);

private:
    struct Impl;
    std::unique_ptr<Impl> d;
};

} // namespace App
} // namespace Tavrin
