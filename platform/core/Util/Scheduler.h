#pragma once

#include <QAtomicInt>
#include <QObject>

namespace Tavrin {
namespace Util {

// Coalesces requests to run one function of its owner into a single call on a later
// turn of the event loop, on the thread that owns the scheduler.
//
// The state word holds two flags, enabled (2) and pending (4). A request moves it from
// exactly 2 to 6 by compare-and-swap and only then posts an event of type 1000 to the
// scheduler; further requests while pending are dropped. The event starts a coarse timer
// with the stored interval; the timer clears pending and runs the function if enabled.
//
//   Tavrin::Util::Scheduler<Handler> scheduler(this, &Handler::process);
//   scheduler.schedule(); scheduler.schedule();   // one call of process(), later
class SchedulerBase : public QObject
{
public:
    enum Flags { Enabled = 2, Pending = 4 };
    static constexpr int RequestEventType = 1000; // QEvent::User

    explicit SchedulerBase(int intervalMs = 0, QObject* parent = nullptr);

    void schedule();
    void setEnabled(bool enabled);
    bool isEnabled() const;
    bool isPending() const;
    int state() const { return m_state.loadAcquire(); }

protected:
    bool event(QEvent* event) override;
    void timerEvent(QTimerEvent* event) override;
    virtual void fire() = 0;

private:
    QAtomicInt m_state{Enabled};
    int m_interval;
    int m_timerId = 0;
};

template <class Owner>
class Scheduler final : public SchedulerBase
{
public:
    using Function = void (Owner::*)();
    Scheduler(Owner* owner, Function function, int intervalMs = 0)
        : SchedulerBase(intervalMs), m_owner(owner), m_function(function)
    {
    }

private:
    void fire() override { (m_owner->*m_function)(); }
    Owner* m_owner;
    Function m_function;
};

} // namespace Util
} // namespace Tavrin
