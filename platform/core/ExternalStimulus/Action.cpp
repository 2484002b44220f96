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
    std::deque<Action> running;
    running.swap(m_actions);
    for (const Action& action : running) {
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
