#pragma once

#include <UniqueIPC/ApiVersion.h>

namespace IPC {
namespace Calls {

// The editor's interface as the receiving side registers it and a second launch calls it.
inline const Tavrin::UniqueIPC::ApiVersion kEditorVersion{1, 0, 0, 0, std::string()};
inline constexpr char kEditorAppId[] = "klipvane";

} // namespace Calls
} // namespace IPC
