#pragma once

namespace zarn::test {

/// While it lives, the n-th allocation of this thread by `new`, counted from 0, throws std::bad_alloc.
class FailingNew {
public:
    explicit FailingNew(int n);
    ~FailingNew();
    FailingNew(FailingNew const&) = delete;
    FailingNew& operator=(FailingNew const&) = delete;
};

/// Lets the next allocation of this thread by `new` throw std::bad_alloc.
void FailNextNew() noexcept;

} // namespace zarn::test
