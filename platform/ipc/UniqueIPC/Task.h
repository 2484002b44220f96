#pragma once

#include "UniqueIPC/ApiVersion.h"
#include "UniqueIPC/Frame.h"

#include <QString>

#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

namespace Tavrin {
namespace UniqueIPC {

// One outgoing call, created by IPCBaseProtocol::CreateTask for a target application and
// queued with AddTask.
class Task
{
public:
    Task(std::string targetAppId, std::string senderConnectId, ApiVersion version);

    void SetFunction(const std::string& function, std::vector<std::string> arguments, std::vector<std::string> types);

    const std::string& GetTarget() const { return m_call.target; }
    const Call& GetCall() const { return m_call; }

private:
    Call m_call;
};

using TaskPtr = std::shared_ptr<Task>;
// Called once with true when the target answered "handled", false otherwise (not found,
// refused, disconnected). Runs on the IPC thread.
using TaskCallback = std::function<void(bool handled)>;

namespace details {

// Argument encodings on the wire: QString as UTF-8, enums as signed decimal text.
inline std::string ArgToString(const QString& value) { return value.toStdString(); }
inline std::string ArgToString(std::int64_t value) { return std::to_string(value); }
template <class E, class = std::enable_if_t<std::is_enum<E>::value>>
std::string ArgToString(E value)
{
    return std::to_string(static_cast<std::int64_t>(value));
}

template <class T, class = void>
struct TypeName;
template <>
struct TypeName<QString>
{
    static constexpr const char* value = "QString";
};
template <class E>
struct TypeName<E, std::enable_if_t<std::is_enum<E>::value>>
{
    static constexpr const char* value = "enum64_t";
};

// Decodes an "enum64_t" argument with std::stoll, base 10. Throws std::invalid_argument
// ("invalid stoll argument") for text that is not a number and std::out_of_range
// ("stoll argument out of range") for one outside the 64-bit range.
std::int64_t StringToInt64(const std::string& text);
[[noreturn]] void throwEnumOutOfRange(const std::string& text);

// Decodes an "enum64_t" argument into an enum of a narrower type; a value that does not
// fit throws std::out_of_range too.
template <class E>
E StringToEnum(const std::string& text)
{
    using U = std::underlying_type_t<E>;
    const std::int64_t value = StringToInt64(text);
    if (value < std::int64_t(std::numeric_limits<U>::min()) || value > std::int64_t(std::numeric_limits<U>::max()))
        throwEnumOutOfRange(text);
    return static_cast<E>(value);
}

} // namespace details

} // namespace UniqueIPC
} // namespace Tavrin
