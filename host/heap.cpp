#include "host/heap.h"

#include <malloc.h>

namespace zarn::host {
namespace {

/// Each arena keeps what its fragments hold. Of the eight for each processor that the C library would make, threads of
/// video that come and go with viewers and snapshots wander over all, and memory grows for hours.
constexpr int Arenas = 4;

/// From this size on memory goes straight back to the system. Unless it is set, the first large picture that is freed
/// raises it to the picture's size, and all later ones lie between the small pieces of the heap.
constexpr int LargeBytes = 128 * 1024;

} // namespace

void BoundHeap() {
    mallopt(M_ARENA_MAX, Arenas);
    mallopt(M_MMAP_THRESHOLD, LargeBytes);
    mallopt(M_TRIM_THRESHOLD, LargeBytes);
}

} // namespace zarn::host
