#include "PowerManager.h"

#include <map>

namespace Tavrin {
namespace App {

struct MultiUserPowerManager::State
{
    mutable std::mutex mutex;
    std::shared_ptr<IPowerManager> implementation;
    std::map<std::string, std::weak_ptr<IPowerManager>> users;
    std::set<std::string> suppressing;

    void set(const std::string& id, bool suppress)
    {
        std::lock_guard<std::mutex> lock(mutex);
        const bool wasAny = !suppressing.empty();
        if (suppress)
            suppressing.insert(id);
        else
            suppressing.erase(id);
        const bool isAny = !suppressing.empty();
        if (!implementation || wasAny == isAny)
            return;
        if (isAny)
            implementation->SuppressPowerSaving();
        else
            implementation->RestorePowerSaving();
    }
};

namespace {

// A user's view of the shared manager; outlives the manager harmlessly.
class UserPowerManager : public IPowerManager
{
public:
    UserPowerManager(std::weak_ptr<MultiUserPowerManager::State> state, std::string id)
        : m_state(std::move(state)), m_id(std::move(id))
    {
    }
    ~UserPowerManager() override
    {
        if (auto state = m_state.lock()) {
            state->set(m_id, false);
            std::lock_guard<std::mutex> lock(state->mutex);
            const auto user = state->users.find(m_id);
            if (user != state->users.end() && user->second.expired())
                state->users.erase(user);
        }
    }
    void SuppressPowerSaving() override
    {
        if (auto state = m_state.lock())
            state->set(m_id, true);
    }
    void RestorePowerSaving() override
    {
        if (auto state = m_state.lock())
            state->set(m_id, false);
    }

private:
    std::weak_ptr<MultiUserPowerManager::State> m_state;
    std::string m_id;
};

} // namespace

MultiUserPowerManager::MultiUserPowerManager(std::shared_ptr<IPowerManager> implementation)
    : m_state(std::make_shared<State>())
{
    m_state->implementation = std::move(implementation);
}

MultiUserPowerManager::~MultiUserPowerManager()
{
    std::lock_guard<std::mutex> lock(m_state->mutex);
    if (!m_state->suppressing.empty() && m_state->implementation)
        m_state->implementation->RestorePowerSaving();
    m_state->suppressing.clear();
}

std::shared_ptr<IPowerManager> MultiUserPowerManager::GetPowerManager(const std::string& id)
{
    std::lock_guard<std::mutex> lock(m_state->mutex);
    auto& slot = m_state->users[id];
    if (auto existing = slot.lock())
        return existing;
    auto user = std::make_shared<UserPowerManager>(m_state, id);
    slot = user;
    return user;
}

std::vector<std::string> MultiUserPowerManager::Users() const
{
    std::lock_guard<std::mutex> lock(m_state->mutex);
    std::vector<std::string> ids;
    for (const auto& [id, user] : m_state->users) {
        if (!user.expired())
            ids.push_back(id);
    }
    return ids;
}

std::vector<std::string> MultiUserPowerManager::SuppressingUsers() const
{
    std::lock_guard<std::mutex> lock(m_state->mutex);
    return {m_state->suppressing.begin(), m_state->suppressing.end()};
}

} // namespace App
} // namespace Tavrin
