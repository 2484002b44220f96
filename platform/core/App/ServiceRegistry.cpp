#include "App/ServiceRegistry.h"

namespace Tavrin {
namespace App {

ServiceRegistry& ServiceRegistry::instance()
{
    static ServiceRegistry* registry = new ServiceRegistry;
    return *registry;
}

void ServiceRegistry::setEntry(std::type_index type, boost::any value)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    if (value.empty())
        m_services.erase(type);
    else
        m_services[type] = std::move(value);
}

boost::any ServiceRegistry::entry(std::type_index type) const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    auto it = m_services.find(type);
    return it == m_services.end() ? boost::any() : it->second;
}

void ServiceRegistry::setValue(const std::string& key, boost::any value)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_values[key] = std::move(value);
}

boost::any ServiceRegistry::value(const std::string& key) const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    auto it = m_values.find(key);
    return it == m_values.end() ? boost::any() : it->second;
}

void ServiceRegistry::clear()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_services.clear();
    m_values.clear();
}

} // namespace App
} // namespace Tavrin
