#include "failing_new.h"

#include <cstdlib>
#include <new>

namespace {

thread_local int Succeeding = 0; ///< allocations before those that fail
thread_local int Failing = 0;    ///< allocations that fail then
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

FailingNew::FailingNew(int n, int count) {
    Succeeding = n;
    Failing = count;
    Failed = false;
}

FailingNew::~FailingNew() { Failing = 0; }

bool FailingNew::HasFailed() const { return Failed; }

} // namespace zarn::test
