#include "Util/Scheduler.h"

#include <QCoreApplication>
#include <QEvent>
#include <QTimerEvent>

namespace Tavrin {
namespace Util {

SchedulerBase::SchedulerBase(int intervalMs, QObject* parent) : QObject(parent), m_interval(intervalMs) {}

void SchedulerBase::schedule()
{
    if (m_state.testAndSetOrdered(Enabled, Enabled | Pending))
        QCoreApplication::postEvent(this, new QEvent(static_cast<QEvent::Type>(RequestEventType)),
                                    Qt::NormalEventPriority);
}

void SchedulerBase::setEnabled(bool enabled)
{
    for (;;) {
        const int current = m_state.loadAcquire();
        const int next = enabled ? (current | Enabled) : (current & ~Enabled);
        if (m_state.testAndSetOrdered(current, next))
            return;
    }
}

bool SchedulerBase::isEnabled() const
{
    return m_state.loadAcquire() & Enabled;
}

bool SchedulerBase::isPending() const
{
    return m_state.loadAcquire() & Pending;
}

bool SchedulerBase::event(QEvent* event)
{
    if (event->type() != RequestEventType)
        return QObject::event(event);
    if (m_state.loadAcquire() == (Enabled | Pending)) {
        if (m_timerId == 0)
            m_timerId = startTimer(m_interval, Qt::CoarseTimer);
    } else {
        // A request of a scheduler that was disabled meanwhile is dropped.
        m_state.testAndSetOrdered(Pending, 0);
    }
    return true;
}

void SchedulerBase::timerEvent(QTimerEvent* event)
{
    if (event->timerId() != m_timerId)
        return QObject::timerEvent(event);
    killTimer(m_timerId);
    m_timerId = 0;
    const int previous = m_state.fetchAndAndOrdered(~Pending);
    if (previous & Enabled)
        fire();
}

} // namespace Util
} // namespace Tavrin
