#pragma once

#include <boost/any.hpp>

#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <typeindex>

namespace Tavrin {
namespace App {

// The running application's registry of services, looked up by interface type.
//
// Entries are kept as boost::any holding a std::shared_ptr of the interface. A lookup
// whose entry holds another type raises boost::bad_any_cast: that is a wiring mistake of
// the host, and it must be loud.
//
//   ServiceRegistry::instance().set<ICustomizationManager>(manager);
//   auto manager = ServiceRegistry::instance().get<ICustomizationManager>();
class ServiceRegistry
{
public:
    static ServiceRegistry& instance();

    template <class Interface>
    void set(std::shared_ptr<Interface> service)
    {
        setEntry(typeid(Interface), boost::any(std::move(service)));
    }

    // Empty when nothing is registered under Interface.
    template <class Interface>
    std::shared_ptr<Interface> get() const
    {
        const boost::any entry = this->entry(typeid(Interface));
        if (entry.empty())
            return {};
        return boost::any_cast<std::shared_ptr<Interface>>(entry);
    }

    template <class Interface>
    void remove()
    {
        setEntry(typeid(Interface), boost::any());
    }

    // Raw access, for hosts that register under a type of their choosing.
    void setEntry(std::type_index type, boost::any value);
    boost::any entry(std::type_index type) const;

    // Named values of the application (for example the start-up locale).
    void setValue(const std::string& key, boost::any value);
    boost::any value(const std::string& key) const;

    void clear();

private:
    ServiceRegistry() = default;
    mutable std::mutex m_mutex;
    std::map<std::type_index, boost::any> m_services;
    std::map<std::string, boost::any> m_values;
};

} // namespace App
} // namespace Tavrin
