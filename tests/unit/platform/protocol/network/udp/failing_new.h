#pragma once

namespace zarn::test {

/// During its lifetime, the n-th allocation (from 0) of this thread by `new` throws std::bad_alloc.
class FailingNew {
public:
    explicit FailingNew(int n);
    ~FailingNew();
    FailingNew(FailingNew const&) = delete;
    FailingNew& operator=(FailingNew const&) = delete;
};

/// Makes the next allocation of this thread by `new` throw std::bad_alloc.
void FailNextNew() noexcept;

} // namespace zarn::test
