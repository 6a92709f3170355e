#pragma once

#include <chrono>

namespace zarn::host {

/// Keeps the C library's heap from growing with the number of threads that have ever used it. To be called first of
/// all, while the process has one thread. Source: mallopt(3).
void BoundHeap();

/// Lets whoever finds no memory wait for it before std::bad_alloc is thrown: the work of others ends meanwhile and
/// gives some back. Much of what keeps a server going has nobody to catch that exception: a queue of handlers that was
/// about to be scheduled stands still for ever after it. To be called once. longest  wait
void AwaitMemory(std::chrono::milliseconds longest);

/// How often memory was waited for so far. Thread: any.
unsigned long CountShortages();

} // namespace zarn::host
