#pragma once

#include <chrono>

namespace zarn::job {

/// The right of a job to run, which its pool gives to as many jobs as there are processors.
class Turn {
public:
    Turn() = default;
    Turn(Turn const&) = delete;
    Turn& operator=(Turn const&) = delete;

    /// That of the job which the current thread runs; null on a thread of no pool.
    static Turn* GetCurrent() noexcept;

    /// Gives the turn back until Wake() has been called or the deadline has passed, and it is this job's turn again;
    /// returns at once when Wake() was called since the last return. Throws std::bad_alloc, with the turn kept.
    /// Thread: the job's.
    virtual void SleepUntil(std::chrono::steady_clock::time_point deadline) = 0;

    /// Ends SleepUntil(), also one that has not begun. Thread: any, as long as the job runs.
    virtual void Wake() = 0;

protected:
    ~Turn() = default;
};

} // namespace zarn::job
