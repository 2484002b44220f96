#pragma once

#include <deque>
#include <functional>
#include <string>
#include <vector>

namespace Tavrin {
namespace ExternalStimulus {

// An action the application wants to run by itself: a name and what to run.
struct Action
{
    std::string name;
    std::function<void()> function;
};

// The gate that decides when spontaneous actions may run.
class IGateway
{
public:
    virtual ~IGateway() = default;
    virtual void ProposeAction(const Action& action) = 0;
    virtual void CancelActions(const std::string& name) = 0;
    virtual bool IsBlockedActions(const std::string& name) const = 0;
};

// A queue of actions in proposal order.
//
// Busy means that ExecAll is running; an action proposed meanwhile waits in the queue
// and the running loop picks it up. Blocked means that an action of that name is queued
// and has not run yet.
class ActionStorage
{
public:
    void Add(const Action& action);
    void Remove(const std::string& name);
    void Clear();

    bool IsEmpty() const { return m_actions.empty(); }
    bool IsBusy() const { return m_busy; }
    bool IsBlocked(const std::string& name) const;
    std::vector<Action> GetActions() const;

    // Runs the queued actions in order until the queue is empty, including those queued
    // by the running ones. An action that throws is logged and does not stop the others.
    void ExecAll();

private:
    std::deque<Action> m_actions;
    bool m_busy = false;
};

} // namespace ExternalStimulus
} // namespace Tavrin
