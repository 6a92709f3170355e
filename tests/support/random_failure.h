#pragma once

namespace zarn::test {

/// During its lifetime, the program gets no random bytes: the call fails as it does when the system gives none. Thread:
/// any; one at a time.
class RandomFailure {
public:
    RandomFailure();
    ~RandomFailure();

    RandomFailure(RandomFailure const&) = delete;
    RandomFailure& operator=(RandomFailure const&) = delete;
};

} // namespace zarn::test
