#pragma once

namespace zarn::test {

/// While it lives, allocations of this thread by `new (std::nothrow)`, which is how gSOAP makes objects, fail: those
/// from the n-th on, counted from 0.
class FailingNew {
public:
    explicit FailingNew(int n);
    ~FailingNew();
    FailingNew(FailingNew const&) = delete;
    FailingNew& operator=(FailingNew const&) = delete;
};

} // namespace zarn::test
