#pragma once

#include <pthread.h>

#include <cstddef>
#include <functional>

namespace zarn::job {

/// Names a thread until it has been joined.
using ThreadHandle = pthread_t;

/// Starts a thread with a stack of `stackSize` bytes, which std::thread has no say in. The thread has to be joined, by
/// the handle that it reads itself with GetCurrentThread.
/// function  must not throw
/// Throws std::system_error when the thread cannot be started; `function` is then destroyed. Thread: any.
void StartThread(std::size_t stackSize, std::function<void()> function);

/// The handle of the calling thread.
ThreadHandle GetCurrentThread() noexcept;

/// Waits for the end of a thread; each thread is joined once.
void JoinThread(ThreadHandle thread) noexcept;

} // namespace zarn::job
