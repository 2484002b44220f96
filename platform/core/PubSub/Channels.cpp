#include "PubSub/Channels.h"

namespace Command {
Object* globalObject()
{
    static Object object;
    return &object;
}
} // namespace Command

namespace Statistics {
Object* globalObject()
{
    static Object object;
    return &object;
}
} // namespace Statistics

namespace Package {
Object* globalObject()
{
    static Object object;
    return &object;
}
} // namespace Package
