#include "host/heap.h"

#include <malloc.h>

#include <atomic>
#include <new>
#include <thread>

namespace zarn::host {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds Pause{1};

std::atomic<unsigned long> retriedAllocations = 0;
std::atomic<std::chrono::milliseconds> longestWait;

/// `operator new` calls this after each failed attempt; a call that comes later than one pause belongs to another
/// allocation.
void WaitForMemory() {
    thread_local Clock::time_point begin;
    thread_local Clock::time_point returned;
    auto const now = Clock::now();
    if (now - returned > Pause) {
        begin = now;
        ++retriedAllocations;
    }
    if (now - begin > longestWait.load()) throw std::bad_alloc();
    std::this_thread::sleep_for(Pause);
    returned = Clock::now();
}

} // namespace

void TrimHeap() { malloc_trim(0); }

void RetryAllocations(std::chrono::milliseconds longest) {
    longestWait = longest;
    std::set_new_handler(WaitForMemory);
}

unsigned long CountRetriedAllocations() { return retriedAllocations; }

void LimitHeap() {
    // Each arena keeps its fragments. The C library would make eight for each processor, and threads of video, which
    // come and go with viewers and snapshots, would use them all: memory would grow for hours.
    mallopt(M_ARENA_MAX, 4);
    // Larger pieces go straight back to the system: pictures do; the context of a SOAP exchange (160 KiB) does not,
    // which would halve the web server's speed. Unless the limit is set, the first large picture that is freed raises
    // it to that picture's size.
    constexpr int LargeBytes = 256 * 1024;
    mallopt(M_MMAP_THRESHOLD, LargeBytes);
    mallopt(M_TRIM_THRESHOLD, 2 * LargeBytes); // the C library's own proportion
}

} // namespace zarn::host
