#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <thread>

namespace zarn::job {

/// Runs jobs on threads of its own, as many at a time as there are processors; further jobs queue. A job that waits for
/// something that takes long does so with a ConditionVariable: it does not count meanwhile. When its wait ends it takes
/// turns with the queue, so that neither jobs that go on nor new ones hold the others up.
///
/// Every thread has a stack of 2 MiB (16 MiB in sanitizer builds), whatever stack limit the process has.
/// An idle thread sleeps without waking up, once it has looked out for another job for a moment; the one that became
/// idle last gets the next job, so that the others can go. Thread: any, except that Stop and the destructor must not be
/// called by a job of the same pool.
class DynamicThreadPool {
public:
    /// minimum     threads that are started at once and stay until the pool stops
    /// idle        how long a thread above the minimum waits for a job before it goes; negative counts as 0
    /// processors  jobs that run at the same time, those that wait not counted; 0 counts as 1
    /// Throws std::system_error when the minimum cannot be started.
    DynamicThreadPool(unsigned minimum, std::chrono::seconds idle,
                      unsigned processors = std::thread::hardware_concurrency());

    /// Stops.
    ~DynamicThreadPool();

    DynamicThreadPool(DynamicThreadPool const&) = delete;
    DynamicThreadPool& operator=(DynamicThreadPool const&) = delete;

    /// Runs `job` as soon as it may run, on an idle thread, or on a new one when none is idle. Never waits for a job.
    /// The job is destroyed on that thread right after it has run, before the thread is idle again. What it throws is
    /// logged and goes no further.
    /// Throws std::invalid_argument for an empty function, and std::runtime_error after Stop. When a thread is needed
    /// and cannot be started, the job queues behind one that runs; when none runs, std::system_error is thrown, and the
    /// job is destroyed without having run. Jobs that have queued are dropped when nothing is left that would ever run
    /// them; that is logged, and their notices say so.
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
