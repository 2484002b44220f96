#include "UniqueIPC/Invoker.h"

#include <glog/logging.h>

#include <exception>

namespace Tavrin {
namespace UniqueIPC {

IInvoker::~IInvoker() = default;

void InvokerStorage::Register(const std::string& function, std::vector<std::string> types, ApiVersion version,
                              std::shared_ptr<IInvoker> invoker)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    if (!m_entries.count(function))
        m_order.push_back(function);
    m_entries[function] = Entry{std::move(types), std::move(version), std::move(invoker)};
}

void InvokerStorage::SetFallback(std::shared_ptr<IInvoker> invoker)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_fallback = std::move(invoker);
}

bool InvokerStorage::IsRegistered(const std::string& function) const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_entries.count(function) > 0;
}

std::vector<std::string> InvokerStorage::RegisteredFunctions() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_order;
}

bool InvokerStorage::Invoke(const Call& call) const
{
    std::shared_ptr<IInvoker> invoker;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        const auto it = m_entries.find(call.function);
        if (it != m_entries.end()) {
            if (it->second.version.major != call.version.major) {
                LOG(WARNING) << "IPC call \"" << call.function << "\" has interface version " << call.version.major
                             << " but version " << it->second.version.major << " is implemented; dropped";
                return false;
            }
            invoker = it->second.invoker;
        } else {
            invoker = m_fallback;
        }
    }
    if (!invoker) {
        LOG(WARNING) << "No handler for IPC call \"" << call.function << "\"";
        return false;
    }
    // The receiving edge: whatever a handler throws ends here, never in the event loop.
    try {
        return invoker->Invoke(call.arguments, call.types);
    } catch (const std::exception& e) {
        LOG(ERROR) << "IPC call \"" << call.function << "\" dropped: " << e.what();
    } catch (...) {
        LOG(ERROR) << "IPC call \"" << call.function << "\" dropped: unknown exception";
    }
    return false;
}

} // namespace UniqueIPC
} // namespace Tavrin
