#pragma once

#include <limits>

namespace zarn::test {

/// While it lives, allocations of this thread by `new (std::nothrow)`, which is how gSOAP makes objects, fail: those
/// from the n-th on, counted from 0, and `count` of them.
class FailingNew {
public:
    explicit FailingNew(int n, int count = std::numeric_limits<int>::max());
    ~FailingNew();
    FailingNew(FailingNew const&) = delete;
    FailingNew& operator=(FailingNew const&) = delete;

    /// Whether an allocation has failed.
    bool HasFailed() const;
};

} // namespace zarn::test
