#pragma once

#include <QList>
#include <QtGlobal>

#include <atomic>
#include <functional>
#include <memory>

class QThreadPool;

// The application's task library: work that must not block the GUI thread runs as an
// executor on a shared thread pool, and a watcher living on the GUI thread hears when it
// starts, how far it got and when it ended. Cancellation is cooperative: the executor asks
// its progress reporter whether to stop.
//
//     class Count : public Task::IExecutor {
//         void run(Task::Progress& progress) override {
//             for (int i = 0; i < 100 && !progress.isCancelled(); ++i)
//                 progress.report(i / 100.0);
//         }
//     };
//     watcher.submit(std::make_shared<Count>());   // watcher: a Task::TaskWatcher subclass
namespace Task {

using TaskId = quint64;

// What a running executor reports to and reads from. Safe to use from any thread.
class Progress
{
public:
    Progress() = default;
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    // How far the work got, a fraction from 0 to 1 (values outside are clamped).
    void report(double fraction);
    double fraction() const { return m_fraction.load(std::memory_order_relaxed); }

    void cancel() { m_cancelled.store(true, std::memory_order_relaxed); }
    bool isCancelled() const { return m_cancelled.load(std::memory_order_relaxed); }
    // For loops that poll cancellation where a reporter cannot be passed (the traverser).
    const std::atomic_bool& cancelFlag() const { return m_cancelled; }

    // Called on the reporting thread whenever the fraction moved by a percent or more.
    void setListener(std::function<void(double)> listener) { m_listener = std::move(listener); }

private:
    std::atomic<double> m_fraction{0.0};
    std::atomic_bool m_cancelled{false};
    double m_lastNotified = -1.0;
    std::function<void(double)> m_listener;
};

// A piece of work. `run` is called once, on a worker thread; results stay in the executor
// and are read by whoever submitted it once the task has ended.
class IExecutor
{
public:
    virtual ~IExecutor();
    virtual void run(Progress& progress) = 0;
};

// Submits executors and hears about them on the thread that created the watcher (which
// must run an event loop). Destroying a watcher cancels its tasks and waits until none of
// them runs any more, so no task outlives the object that receives its result; tasks that
// had not started yet never start. Not thread-safe: use one watcher from its own thread.
class TaskWatcher
{
public:
    TaskWatcher();
    virtual ~TaskWatcher();
    TaskWatcher(const TaskWatcher&) = delete;
    TaskWatcher& operator=(const TaskWatcher&) = delete;

    TaskId submit(std::shared_ptr<IExecutor> executor);

    // Tasks submitted and not yet reported ended, in submission order.
    QList<TaskId> tasks() const;
    double progress(TaskId id) const;
    void cancel(TaskId id);
    void cancelAll();

protected:
    virtual void taskStarted(TaskId id);
    virtual void taskProgress(TaskId id, double fraction);
    // `cancelled` tells whether cancellation was asked before the executor returned; the
    // executor holds whatever it completed.
    virtual void taskFinished(TaskId id, const std::shared_ptr<IExecutor>& executor, bool cancelled);

private:
    struct Impl;
    std::unique_ptr<Impl> d;
};

// The pool every watcher runs its tasks on: at least two threads, separate from Qt's
// global pool so that media probing and searches do not queue behind each other.
QThreadPool& threadPool();

// Work done beside the caller's own: started on threadPool() at construction, and waited for
// by wait() (or the destructor). If no pool thread has taken the work by then, the waiting
// thread does it itself, so a busy pool never makes the caller wait for its queue. `work`
// runs exactly once and must not throw.
//
//     Task::Beside lookup([&] { statFiles(entries); });   // on another core...
//     readClips();                                         // ...while this one works
//     lookup.wait();
class Beside
{
public:
    explicit Beside(std::function<void()> work);
    ~Beside();
    Beside(const Beside&) = delete;
    Beside& operator=(const Beside&) = delete;
    void wait();

private:
    struct State;
    std::shared_ptr<State> m_state;
};

} // namespace Task
