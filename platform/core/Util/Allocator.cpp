#include "Util/Allocator.h"

#include <QtGlobal>

#include <malloc.h>

namespace Tavrin {
namespace Util {

void tuneAllocatorForMedia()
{
    if (qEnvironmentVariableIntValue("KLIPVANE_MALLOC_DEFAULTS") == 1)
        return;
    // Blocks up to this size come from the heap, not from their own mapping: an HD frame and
    // the demuxer's probe buffer fit.
    mallopt(M_MMAP_THRESHOLD, 32 * 1024 * 1024);
    // Free memory at the heap's top is returned only beyond this much.
    mallopt(M_TRIM_THRESHOLD, 64 * 1024 * 1024);
}

} // namespace Util
} // namespace Tavrin
