#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace zarn::job {

/// A condition variable for jobs of a pool: while a job waits it does not count as running, so that the pool lets
/// another one run, and when it is notified its thread wakes up only once the pool lets it run on. However many wait,
/// a notification thus makes no more threads runnable than there are processors. Threads outside any pool may wait as
/// well. Thread: any; it must outlive every wait.
class ConditionVariable {
public:
    ConditionVariable() = default;
    ~ConditionVariable() = default;
    ConditionVariable(ConditionVariable const&) = delete;
    ConditionVariable& operator=(ConditionVariable const&) = delete;

    /// Waits for a notification or until the deadline has passed, and then for the job's turn. May wake spuriously.
    /// lock  of the mutex that guards what is waited for; held at the call and again on return, not meanwhile
    /// Throws std::bad_alloc, without having waited.
    void WaitUntil(std::unique_lock<std::mutex>& lock, std::chrono::steady_clock::time_point deadline);

    /// Ends the waits that have begun.
    void NotifyAll();

private:
    /// A job that waits; lives on its thread's stack.
    struct Waiting;

    void Add(Waiting& waiting);
    void Remove(Waiting& waiting);

    std::mutex mutex;         ///< guards the list, and its members from destruction while it is held
    Waiting* first = nullptr; ///< the list of the jobs that wait
    Waiting* last = nullptr;
    std::condition_variable foreign; ///< for threads outside any pool
};

} // namespace zarn::job
