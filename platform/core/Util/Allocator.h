#pragma once

namespace Tavrin {
namespace Util {

// Keeps the C library's allocator from handing large blocks back to the system as soon as
// they are freed. Opening media allocates and frees the same few megabytes per file (the
// demuxer's probe buffers, decoded frames); with the default thresholds each of them is a
// fresh mmap that the kernel zero-fills page by page, which cost kvprobe close to half its
// time. Raised thresholds keep those blocks in the heap for reuse, for some 15 MB more
// resident memory. Call once at the start of main(), before any thread exists.
//
// KLIPVANE_MALLOC_DEFAULTS=1 in the environment leaves the defaults (bench/run_media.sh
// measures both in one run).
void tuneAllocatorForMedia();

} // namespace Util
} // namespace Tavrin
