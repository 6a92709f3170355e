#pragma once

#include <chrono>

namespace zarn::host {

/// Keeps the C library's heap from growing with the number of threads that have ever used it. To be called first of
/// all, while the process has one thread. Source: mallopt(3).
void LimitHeap();

/// Returns the pages that the heap does not use to the system. By itself the heap shrinks only at its end, where one
/// small allocation can hold back everything before it. Thread: any. Source: malloc_trim(3).
void TrimHeap();

/// From now on a failed allocation is retried for up to `longest` before std::bad_alloc is thrown, because other
/// threads free memory meanwhile. Nothing catches that exception in much of what keeps a server going: a queue of
/// handlers that was about to be scheduled would stop for ever. To be called once.
void RetryAllocations(std::chrono::milliseconds longest);

/// How many allocations had to wait so far. Thread: any.
unsigned long CountRetriedAllocations();

} // namespace zarn::host
