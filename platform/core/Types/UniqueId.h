#pragma once

#include <cstdint>

namespace Types {

// A number no other call of this process returned: ids of users of shared services.
// Safe from any thread.
std::uint64_t nextUniqueId();

} // namespace Types
