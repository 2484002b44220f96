#pragma once

#include "AppUtil_export.h"

#include <ExternalStimulus/Action.h>
#include <ExternalStimulus/NotifiedLockable.h>

#include <QEvent>
#include <QObject>
#include <QPointer>

#include <functional>
#include <set>
#include <string>

class QWidget;

// The gate for actions the editor starts by itself (start-up work, update checks,
// requests from other processes), so that they never pop up over a dialog the user is
// working in.
//
//   Action::proposeAction(Action::ACTION_STARTUP, [] { showWhatsNew(); });
//
// An action runs at once when nothing blocks. A modal window whose chain of parents
// carries the dynamic property "blockSpontaneousActivityFlag" = true holds every action
// until it is hidden; any other modal window holds only the modal-wait names until the
// main window is unblocked (or, when that window does not block the main window, until it
// is hidden); a locked gateway queues actions until it is unlocked.
namespace Action {

APPUTIL_EXPORT extern const char* const ACTION_STARTUP;
APPUTIL_EXPORT extern const char* const ACTION_ALL;
APPUTIL_EXPORT extern const char* const g_BlockSpontaneousActivityFlag;

class APPUTIL_EXPORT Gateway : public QObject,
                               public Tavrin::ExternalStimulus::IGateway,
                               public Tavrin::NotifiedLockableAdapter<Tavrin::RecursiveBoolLock>
{
    Q_OBJECT
public:
    explicit Gateway(QObject* parent = nullptr);
    ~Gateway() override;

    void ProposeAction(const Tavrin::ExternalStimulus::Action& action) override;
    void CancelActions(const std::string& name) override;
    bool IsBlockedActions(const std::string& name) const override;

    // Refuses actions of this name from now on (ACTION_ALL refuses every action) and
    // drops those already queued. Names in the allowed set still pass.
    void BlacklistAction(const std::string& name);
    void AllowAction(const std::string& name);

    // The widget that holds spontaneous actions back right now, or null.
    static QWidget* blockingWindow();

protected:
    void on_lock_released() override;

private:
    bool isEnabled(const std::string& name) const;
    void filterQueue();

    Tavrin::ExternalStimulus::ActionStorage m_storage;
    std::set<std::string> m_allowed;
    std::set<std::string> m_blacklist;
};

// The do-nothing gateway, for hosts that want no spontaneous actions at all.
class APPUTIL_EXPORT GatewayEmpty : public Tavrin::ExternalStimulus::IGateway,
                                    public Tavrin::NotifiedLockableAdapter<Tavrin::RecursiveBoolLock>
{
public:
    void ProposeAction(const Tavrin::ExternalStimulus::Action& action) override;
    void CancelActions(const std::string& name) override;
    bool IsBlockedActions(const std::string& name) const override;

protected:
    void on_lock_released() override;
};

// Holds one action until the watched widget sees an event of the awaited type, then
// proposes it to the gateway again (also when the widget is destroyed first).
class APPUTIL_EXPORT EventWatcher : public QObject
{
    Q_OBJECT
public:
    EventWatcher(QWidget* watched, Gateway* gateway, QEvent::Type awaited,
                 const Tavrin::ExternalStimulus::Action& action);
    ~EventWatcher() override;

protected:
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    QPointer<Gateway> m_gateway;
    QEvent::Type m_awaited;
    Tavrin::ExternalStimulus::Action m_action;
    bool m_released = false;
};

// Proposes an action to the application-wide gateway from the service registry. Without
// a registered gateway nothing gates actions: it runs at once, with a log line.
APPUTIL_EXPORT void proposeAction(const std::string& name, const std::function<void()>& function);

} // namespace Action
