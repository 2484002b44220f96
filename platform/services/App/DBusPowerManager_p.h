#pragma once

#include "PowerManager.h"

#include <QDBusObjectPath>
#include <QObject>
#include <QString>
#include <QStringList>

#include <deque>
#include <vector>

class QDBusPendingCallWatcher;
class QDBusMessage;

namespace Tavrin {
namespace App {

// The session bus's inhibition services, tried in order of preference among those present:
// the GNOME session manager (idle and suspend in one call), the desktop portal (the same,
// sandbox-friendly), org.freedesktop.ScreenSaver (idle) and
// org.freedesktop.PowerManagement.Inhibit (suspend).
//
// Lives on the thread that created it (the GUI thread); SuppressPowerSaving() and
// RestorePowerSaving() only post there. Every bus call is asynchronous with a timeout, so a
// slow or silent service delays the inhibition, never the editor. One inhibition is held at
// a time; a request that changes its mind while a call is out is settled when the call ends.
class DBusPowerManager : public QObject, public IPowerManager
{
    Q_OBJECT

public:
    enum class Service { SessionManager, Portal, ScreenSaver, PowerManagement };

    // `callTimeoutMs`: how long one bus call may take before the service counts as absent.
    explicit DBusPowerManager(int callTimeoutMs);
    ~DBusPowerManager() override;

    void SuppressPowerSaving() override;
    void RestorePowerSaving() override;

    static QString serviceName(Service service);

    // Releases what is held (bounded wait) and ignores later requests: the process ends.
    void finish();

private:
    enum class Stage { Idle, Probing, Inhibiting, Inhibited, Releasing };

    void setWanted(bool wanted);
    void settle();
    void probe();
    void probed();
    void tryNextService();
    void inhibited(QDBusPendingCallWatcher* call, Service service);
    // Takes the cookie or request handle of an Inhibit reply; false when it holds none.
    bool takeInhibition(const QDBusMessage& reply, Service service);
    void release();
    // Synchronous, bounded: for the end of the process, when no event loop will run again.
    void releaseNow();
    QDBusPendingCallWatcher* send(const QDBusMessage& message);
    void forget(QDBusPendingCallWatcher* call);
    void abandonCalls();
    QDBusMessage releaseMessage() const;

    const int m_timeoutMs;
    bool m_wanted = false;
    bool m_quitting = false;
    Stage m_stage = Stage::Idle;
    QStringList m_names; // what the probe found
    int m_probesOut = 0;
    std::deque<Service> m_candidates;
    Service m_service = Service::ScreenSaver;
    uint m_cookie = 0;
    QDBusObjectPath m_request;
    std::vector<QDBusPendingCallWatcher*> m_calls;
    QDBusPendingCallWatcher* m_inhibitCall = nullptr; // the Inhibit call that is out, if any
};

} // namespace App
} // namespace Tavrin
