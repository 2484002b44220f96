#include "ExternalStimulus/Action.h"

#include <algorithm>
#include <exception>

#include <glog/logging.h>

namespace Tavrin {
namespace ExternalStimulus {

void ActionStorage::Add(const Action& action)
{
    m_actions.push_back(action);
}

void ActionStorage::Remove(const std::string& name)
{
    m_actions.erase(std::remove_if(m_actions.begin(), m_actions.end(),
                                   [&](const Action& action) { return action.name == name; }),
                    m_actions.end());
}

void ActionStorage::Clear()
{
    m_actions.clear();
}

bool ActionStorage::IsBlocked(const std::string& name) const
{
    return std::any_of(m_actions.begin(), m_actions.end(), [&](const Action& action) { return action.name == name; });
}

std::vector<Action> ActionStorage::GetActions() const
{
    return std::vector<Action>(m_actions.begin(), m_actions.end());
}

void ActionStorage::ExecAll()
{
    if (m_busy)
        return;
    m_busy = true;
    // One at a time from the front rather than a swapped-out batch: an action that cancels
    // or blacklists others must reach those still waiting behind it, and the waiting ones
    // stay visible to IsBlocked() until they run.
    while (!m_actions.empty()) {
        const Action action = m_actions.front();
        m_actions.pop_front();
        if (!action.function)
            continue;
        try {
            action.function();
        } catch (const std::exception& e) {
            LOG(ERROR) << "Action " << action.name << " failed: " << e.what();
        } catch (...) {
            LOG(ERROR) << "Action " << action.name << " failed";
        }
    }
    m_busy = false;
}

} // namespace ExternalStimulus
} // namespace Tavrin
