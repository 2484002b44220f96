#pragma once

#include "UniqueIPC/ApiVersion.h"
#include "UniqueIPC/Frame.h"

#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace Tavrin {
namespace UniqueIPC {

// Runs one received call. Returns true when the call was handled. Called on the IPC
// thread; an exception thrown here is caught by the storage, logged, and answered as failed.
class IInvoker
{
public:
    virtual ~IInvoker();
    virtual bool Invoke(const std::vector<std::string>& arguments, const std::vector<std::string>& types) = 0;
};

// The received-call table of one application: function name -> invoker, plus a fallback
// for names nobody registered.
//
//   storage.Register("OnOpenProject", {"QString"}, {1, 0, 0, 0, ""}, invoker);
//   storage.SetFallback(defaultInvoker);
class InvokerStorage
{
public:
    struct Entry
    {
        std::vector<std::string> types;  // the declared argument types, for diagnostics
        ApiVersion version;
        std::shared_ptr<IInvoker> invoker;
    };

    void Register(const std::string& function, std::vector<std::string> types, ApiVersion version,
                  std::shared_ptr<IInvoker> invoker);
    void SetFallback(std::shared_ptr<IInvoker> invoker);
    bool IsRegistered(const std::string& function) const;
    std::vector<std::string> RegisteredFunctions() const;

    // Dispatches a call to its invoker (or the fallback). A call whose major version differs
    // from the registered one is refused. Never throws.
    bool Invoke(const Call& call) const;

private:
    mutable std::mutex m_mutex;
    std::map<std::string, Entry> m_entries;
    std::vector<std::string> m_order;
    std::shared_ptr<IInvoker> m_fallback;
};

} // namespace UniqueIPC
} // namespace Tavrin
