#include "UniqueIPC/Task.h"

#include <stdexcept>

namespace Tavrin {
namespace UniqueIPC {

Task::Task(std::string targetAppId, std::string senderConnectId, ApiVersion version)
{
    m_call.target = std::move(targetAppId);
    m_call.sender = std::move(senderConnectId);
    m_call.version = std::move(version);
}

void Task::SetFunction(const std::string& function, std::vector<std::string> arguments, std::vector<std::string> types)
{
    m_call.function = function;
    m_call.arguments = std::move(arguments);
    m_call.types = std::move(types);
}

namespace details {

std::int64_t StringToInt64(const std::string& text)
{
    // The standard library's own messages name only the function; peers and logs get the
    // fuller texts every component of the product family uses.
    try {
        return std::stoll(text, nullptr, 10);
    } catch (const std::invalid_argument&) {
        throw std::invalid_argument("invalid stoll argument");
    } catch (const std::out_of_range&) {
        throw std::out_of_range("stoll argument out of range");
    }
}

void throwEnumOutOfRange(const std::string& text)
{
    throw std::out_of_range("enum value out of range: " + text);
}

} // namespace details
} // namespace UniqueIPC
} // namespace Tavrin
