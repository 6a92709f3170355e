#pragma once

namespace zarn::test {

/// During its lifetime, `aligned_alloc` fails in this thread. Boost.Asio uses it to allocate pending operations.
class FailingAlignedAlloc {
public:
    FailingAlignedAlloc();
    ~FailingAlignedAlloc();
    FailingAlignedAlloc(FailingAlignedAlloc const&) = delete;
    FailingAlignedAlloc& operator=(FailingAlignedAlloc const&) = delete;
};

} // namespace zarn::test
