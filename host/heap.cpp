#include "host/heap.h"

#include <malloc.h>

#include <atomic>
#include <new>
#include <thread>

namespace zarn::host {
namespace {

/// Each arena keeps what its fragments hold. Of the eight for each processor that the C library would make, threads of
/// video that come and go with viewers and snapshots wander over all, and memory grows for hours.
constexpr int Arenas = 4;

/// From this size on memory goes straight back to the system: pictures do; the context of a SOAP exchange (160 KiB)
/// does not, which would take half the web server's speed. Unless it is set, the first large picture that is freed
/// raises it to the picture's size, and all later ones lie between the small pieces of the heap.
constexpr int LargeBytes = 256 * 1024;

/// What may lie unused at the end of a heap; the C library's own proportion.
constexpr int UnusedBytes = 2 * LargeBytes;

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds Pause{1};

std::atomic<unsigned long> shortages = 0;
std::atomic<std::chrono::milliseconds> longestWait;

/// The standard calls it again as long as there is no memory, and does not say whether it is for the same allocation:
/// that is tried at once when this returns, so that a call which comes at once is for it.
void WaitForMemory() {
    thread_local Clock::time_point begin;
    thread_local Clock::time_point returned;
    auto const now = Clock::now();
    if (now - returned > Pause) {
        begin = now;
        ++shortages;
    }
    if (now - begin > longestWait.load()) throw std::bad_alloc();
    std::this_thread::sleep_for(Pause);
    returned = Clock::now();
}

} // namespace

void AwaitMemory(std::chrono::milliseconds longest) {
    longestWait = longest;
    std::set_new_handler(WaitForMemory);
}

unsigned long CountShortages() { return shortages; }

void BoundHeap() {
    mallopt(M_ARENA_MAX, Arenas);
    mallopt(M_MMAP_THRESHOLD, LargeBytes);
    mallopt(M_TRIM_THRESHOLD, UnusedBytes);
}

} // namespace zarn::host
