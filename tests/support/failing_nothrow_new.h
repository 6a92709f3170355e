#pragma once

#include <limits>

namespace zarn::test {

/// During its lifetime, `count` allocations of this thread by `new (std::nothrow)` fail, starting with the n-th
/// (counted from 0). gSOAP creates its objects with this operator.
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
