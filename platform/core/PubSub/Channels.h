#pragma once

// The well-known channels of the bus. Each channel is one process-wide object; messages
// bound to it reach the subscribers of that object.
namespace Command {
class Object
{
};
Object* globalObject();
} // namespace Command

namespace Statistics {
class Object
{
};
Object* globalObject();
} // namespace Statistics

namespace Package {
class Object
{
};
Object* globalObject();
} // namespace Package
