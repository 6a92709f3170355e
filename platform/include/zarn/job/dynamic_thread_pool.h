#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>

namespace zarn::job {

/// Runs jobs on threads of its own, one job per thread, starting as many threads as there are jobs under way: a job may
/// wait as long as it likes without holding up another. The caller bounds the number of jobs.
///
/// Every thread has a stack of 2 MiB (16 MiB in sanitizer builds), whatever stack limit the process has.
/// An idle thread waits without waking up; the one that became idle last gets the next job, so that the others can go.
/// Thread: any, except that Stop and the destructor must not be called by a job of the same pool.
class DynamicThreadPool {
public:
    /// minimum  threads that are started at once and stay until the pool stops
    /// idle     how long a thread above the minimum waits for a job before it goes; negative counts as 0
    /// Throws std::system_error when the minimum cannot be started.
    DynamicThreadPool(unsigned minimum, std::chrono::seconds idle);

    /// Stops.
    ~DynamicThreadPool();

    DynamicThreadPool(DynamicThreadPool const&) = delete;
    DynamicThreadPool& operator=(DynamicThreadPool const&) = delete;

    /// Runs `job` on an idle thread, or on a new one when none is idle. Never waits for a job.
    /// The job is destroyed on that thread right after it has run, before the thread is idle again. What it throws is
    /// logged and goes no further.
    /// Throws std::invalid_argument for an empty function, std::runtime_error after Stop, and std::system_error when no
    /// thread is idle and none can be started; the job is then destroyed without having run.
    void Post(std::function<void()> job);

    /// Refuses further jobs, waits until those that were taken have run, and joins every thread.
    /// Stopping twice, also at the same time, is harmless: each call returns when all threads have ended.
    /// Throws std::logic_error when a job of this pool calls it (it would wait for itself).
    void Stop();

    /// The number of threads, idle ones included.
    std::size_t GetThreadCount() const;

    /// The number of threads that wait for a job.
    std::size_t GetIdleCount() const;

private:
    class Impl;
    std::unique_ptr<Impl> impl;
};

} // namespace zarn::job
