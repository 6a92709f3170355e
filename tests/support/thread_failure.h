#pragma once

namespace zarn::test {

/// While it lives, this thread cannot start another one, after a number of times that go well: the system answers as it
/// does when there are too many threads.
class ThreadFailure {
public:
    /// successes  how many threads can still be started
    explicit ThreadFailure(int successes = 0);
    ~ThreadFailure();

    ThreadFailure(ThreadFailure const&) = delete;
    ThreadFailure& operator=(ThreadFailure const&) = delete;
};

} // namespace zarn::test
