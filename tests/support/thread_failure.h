#pragma once

#include <functional>

namespace zarn::test {

/// During its lifetime, this thread cannot start further threads after `successes` successful ones: the call fails as
/// it does when the system's thread limit is reached.
class ThreadFailure {
public:
    /// successes  number of threads that can still be started
    explicit ThreadFailure(int successes = 0);

    /// whenFailing  called before the first call that fails
    explicit ThreadFailure(std::function<void()> whenFailing);

    ~ThreadFailure();

    ThreadFailure(ThreadFailure const&) = delete;
    ThreadFailure& operator=(ThreadFailure const&) = delete;
};

} // namespace zarn::test
