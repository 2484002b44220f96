#pragma once

#include <string>
#include <tuple>

namespace Tavrin {
namespace UniqueIPC {

// The interface version a call was written against: four numbers and a free text.
// Receivers register each call with the version they implement; a call whose major
// number differs from the registered one is not dispatched to that handler.
struct ApiVersion
{
    int major = 0;
    int minor = 0;
    int patch = 0;
    int build = 0;
    std::string text;

    friend bool operator==(const ApiVersion& a, const ApiVersion& b)
    {
        return std::tie(a.major, a.minor, a.patch, a.build, a.text) == std::tie(b.major, b.minor, b.patch, b.build, b.text);
    }
    friend bool operator!=(const ApiVersion& a, const ApiVersion& b) { return !(a == b); }
};

} // namespace UniqueIPC
} // namespace Tavrin
