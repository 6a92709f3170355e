#pragma once

#include <limits>

namespace zarn::test {

/// While it lives, allocations of this thread by `new (std::nothrow)`, which is how gSOAP makes objects, fail: those
/// from the n-th on, counted from 0, and `count` of them.
class FailingNothrowNew {
public:
    explicit FailingNothrowNew(int n, int count = std::numeric_limits<int>::max());
    ~FailingNothrowNew();
    FailingNothrowNew(FailingNothrowNew const&) = delete;
    FailingNothrowNew& operator=(FailingNothrowNew const&) = delete;

    /// Whether an allocation has failed.
    bool HasFailed() const;
};

} // namespace zarn::test
