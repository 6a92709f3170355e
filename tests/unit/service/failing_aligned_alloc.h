#pragma once

namespace zarn::test {

/// While it lives, allocations of this thread by `aligned_alloc` fail, which is how Boost.Asio gets the memory for what
/// waits.
class FailingAlignedAlloc {
public:
    FailingAlignedAlloc();
    ~FailingAlignedAlloc();
    FailingAlignedAlloc(FailingAlignedAlloc const&) = delete;
    FailingAlignedAlloc& operator=(FailingAlignedAlloc const&) = delete;
};

} // namespace zarn::test
