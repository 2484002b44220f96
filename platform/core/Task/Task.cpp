#include "Task/Task.h"

#include <QMap>
#include <QObject>
#include <QRunnable>
#include <QThread>
#include <QThreadPool>

#include <algorithm>
#include <cmath>
#include <condition_variable>
#include <mutex>

namespace Task {

void Progress::report(double fraction)
{
    fraction = std::clamp(fraction, 0.0, 1.0);
    m_fraction.store(fraction, std::memory_order_relaxed);
    if (m_listener && (m_lastNotified < 0 || std::abs(fraction - m_lastNotified) >= 0.01 || (fraction == 1.0 && m_lastNotified != 1.0))) {
        m_lastNotified = fraction;
        m_listener(fraction);
    }
}

IExecutor::~IExecutor() = default;

QThreadPool& threadPool()
{
    static QThreadPool* pool = [] {
        auto* p = new QThreadPool;
        p->setMaxThreadCount(std::max(2, QThread::idealThreadCount()));
        p->setExpiryTimeout(10000);
        return p;
    }();
    return *pool;
}

struct Beside::State
{
    std::function<void()> work;
    std::atomic_bool taken{false};
    std::mutex mutex;
    std::condition_variable finished;
    bool done = false;
};

Beside::Beside(std::function<void()> work) : m_state(std::make_shared<State>())
{
    m_state->work = std::move(work);
    // A pool thread that comes to it after the caller took the work leaves at once: it
    // holds the state alive, never touches what the work refers to.
    threadPool().start([state = m_state] {
        if (state->taken.exchange(true))
            return;
        state->work();
        std::lock_guard<std::mutex> lock(state->mutex);
        state->done = true;
        state->finished.notify_all();
    });
}

Beside::~Beside()
{
    wait();
}

void Beside::wait()
{
    if (!m_state)
        return;
    if (!m_state->taken.exchange(true)) {
        m_state->work();
    } else {
        std::unique_lock<std::mutex> lock(m_state->mutex);
        m_state->finished.wait(lock, [this] { return m_state->done; });
    }
    // Whatever the work holds goes now, not whenever a late pool thread lets go of the state.
    m_state->work = nullptr;
    m_state.reset();
}

namespace {

struct Entry
{
    TaskId id = 0;
    std::shared_ptr<IExecutor> executor;
    Progress progress;
};

// What the runnables of one watcher share with it. `relay` lives on the watcher's thread
// and is cleared (under the mutex) before the watcher goes; `running` counts executors
// inside run(), which the watcher waits for.
struct Shared
{
    std::mutex mutex;
    std::condition_variable idle;
    QObject* relay = nullptr;
    int running = 0;

    template<typename F>
    void post(F&& call)
    {
        std::lock_guard<std::mutex> lock(mutex);
        if (relay)
            QMetaObject::invokeMethod(relay, std::forward<F>(call), Qt::QueuedConnection);
    }
};

class Runnable : public QRunnable
{
public:
    Runnable(std::shared_ptr<Entry> entry, std::shared_ptr<Shared> shared, std::function<void(TaskId)> started,
             std::function<void(TaskId)> finished)
        : m_entry(std::move(entry)), m_shared(std::move(shared)), m_started(std::move(started)),
          m_finished(std::move(finished))
    {
    }

    void run() override
    {
        const TaskId id = m_entry->id;
        bool runs = false;
        {
            // Checked under the lock the watcher waits with, so a watcher being destroyed
            // either sees this task running or this task sees itself cancelled.
            std::lock_guard<std::mutex> lock(m_shared->mutex);
            runs = !m_entry->progress.isCancelled();
            if (runs)
                ++m_shared->running;
        }
        if (runs) {
            m_shared->post([started = m_started, id] { started(id); });
            m_entry->executor->run(m_entry->progress);
        }
        m_shared->post([finished = m_finished, id] { finished(id); });
        if (runs) {
            std::lock_guard<std::mutex> lock(m_shared->mutex);
            --m_shared->running;
            m_shared->idle.notify_all();
        }
    }

private:
    std::shared_ptr<Entry> m_entry;
    std::shared_ptr<Shared> m_shared;
    std::function<void(TaskId)> m_started;
    std::function<void(TaskId)> m_finished;
};

} // namespace

struct TaskWatcher::Impl
{
    TaskId nextId = 1;
    QMap<TaskId, std::shared_ptr<Entry>> entries;
    std::shared_ptr<Shared> shared = std::make_shared<Shared>();
};

TaskWatcher::TaskWatcher() : d(std::make_unique<Impl>())
{
    d->shared->relay = new QObject;
}

TaskWatcher::~TaskWatcher()
{
    cancelAll();
    QObject* relay = nullptr;
    {
        std::unique_lock<std::mutex> lock(d->shared->mutex);
        d->shared->idle.wait(lock, [this] { return d->shared->running == 0; });
        relay = std::exchange(d->shared->relay, nullptr);
    }
    // Events already posted to the relay are dropped with it; tasks still queued in the
    // pool are cancelled and find no relay when they come round.
    delete relay;
}

TaskId TaskWatcher::submit(std::shared_ptr<IExecutor> executor)
{
    if (!executor)
        return 0;
    auto entry = std::make_shared<Entry>();
    entry->id = d->nextId++;
    entry->executor = std::move(executor);
    const TaskId id = entry->id;
    std::weak_ptr<Shared> weakShared = d->shared;
    entry->progress.setListener([weakShared, id, this](double fraction) {
        if (const auto shared = weakShared.lock())
            shared->post([this, id, fraction] {
                if (d->entries.contains(id))
                    taskProgress(id, fraction);
            });
    });
    auto started = [this](TaskId started) {
        if (d->entries.contains(started))
            taskStarted(started);
    };
    auto finished = [this](TaskId ended) {
        const std::shared_ptr<Entry> done = d->entries.take(ended);
        if (done)
            taskFinished(ended, done->executor, done->progress.isCancelled());
    };
    d->entries.insert(id, entry);
    threadPool().start(new Runnable(entry, d->shared, started, finished));
    return id;
}

QList<TaskId> TaskWatcher::tasks() const
{
    return d->entries.keys();
}

double TaskWatcher::progress(TaskId id) const
{
    const auto entry = d->entries.value(id);
    return entry ? entry->progress.fraction() : 0.0;
}

void TaskWatcher::cancel(TaskId id)
{
    if (const auto entry = d->entries.value(id))
        entry->progress.cancel();
}

void TaskWatcher::cancelAll()
{
    for (const auto& entry : qAsConst(d->entries))
        entry->progress.cancel();
}

void TaskWatcher::taskStarted(TaskId) {}
void TaskWatcher::taskProgress(TaskId, double) {}
void TaskWatcher::taskFinished(TaskId, const std::shared_ptr<IExecutor>&, bool) {}

} // namespace Task
