#include "UniqueId.h"

#include <atomic>

namespace Types {

std::uint64_t nextUniqueId()
{
    static std::atomic<std::uint64_t> next{1};
    return next.fetch_add(1, std::memory_order_relaxed);
}

} // namespace Types
