#include "AppEvents/AppEvents.h"

namespace AppEvents {
Object* globalObject()
{
    static Object object;
    return &object;
}
} // namespace AppEvents
