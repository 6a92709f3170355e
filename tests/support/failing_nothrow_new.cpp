#include "support/failing_nothrow_new.h"

#include <cstdlib>
#include <new>

namespace {

thread_local int Succeeding = 0; ///< allocations that still succeed
thread_local int Failing = 0;    ///< allocations that fail after those
thread_local bool Failed = false;

void* Allocate(std::size_t size) noexcept {
    if (Succeeding > 0) {
        --Succeeding;
    } else if (Failing > 0) {
        --Failing;
        Failed = true;
        return nullptr;
    }
    try {
        return ::operator new(size);
    } catch (std::bad_alloc const&) {
        return nullptr;
    }
}

} // namespace

void* operator new(std::size_t size, std::nothrow_t const&) noexcept { return Allocate(size); }

void* operator new[](std::size_t size, std::nothrow_t const&) noexcept { return Allocate(size); }

namespace zarn::test {

FailingNothrowNew::FailingNothrowNew(int n, int count) {
    Succeeding = n;
    Failing = count;
    Failed = false;
}

FailingNothrowNew::~FailingNothrowNew() { Failing = 0; }

bool FailingNothrowNew::HasFailed() const { return Failed; }

} // namespace zarn::test
