#pragma once

#include <chrono>

namespace zarn::host {

/// Keeps the C library's heap from growing with the number of threads that have ever used it. To be called first of
/// all, while the process has one thread. Source: mallopt(3).
void LimitHeap();

/// Gives the memory that the heap does not use back to the system. The heap only does so at its end, so that a few
/// small allocations keep what lies before them. Takes about a millisecond. Thread: any. Source: malloc_trim(3).
void TrimHeap();

/// From now on a failed allocation is retried for up to `longest` before std::bad_alloc is thrown, because other
/// threads free memory meanwhile. Nothing catches that exception in much of what keeps a server going: a queue of
/// handlers that was about to be scheduled would stop for ever. To be called once.
void RetryAllocations(std::chrono::milliseconds longest);

/// How many allocations had to wait so far. Thread: any.
unsigned long CountRetriedAllocations();

} // namespace zarn::host
