#include "Scene/SceneHelper.h"

#include <algorithm>

void ExclusiveClient::setService(QObject* service)
{
    if (service == m_service)
        return;
    breakAll();
    m_service = service;
}

int ExclusiveClient::bind(std::function<void()> onBreak)
{
    const int id = m_next++;
    m_bindings.emplace_back(id, std::move(onBreak));
    return id;
}

void ExclusiveClient::release(int binding)
{
    m_bindings.erase(std::remove_if(m_bindings.begin(), m_bindings.end(),
                                    [binding](const auto& b) { return b.first == binding; }),
                     m_bindings.end());
}

void ExclusiveClient::breakAll()
{
    // Taken out first: a break function may bind again or break again.
    auto bindings = std::move(m_bindings);
    m_bindings.clear();
    for (auto& binding : bindings)
        if (binding.second)
            binding.second();
}
