#include "failing_new.h"

#include <cstdlib>
#include <new>

namespace {

thread_local int Left = -1; ///< allocations that still succeed; negative: all do

void* Allocate(std::size_t size) noexcept {
    if (Left == 0) return nullptr;
    if (Left > 0) --Left;
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

FailingNew::FailingNew(int n) { Left = n; }

FailingNew::~FailingNew() { Left = -1; }

} // namespace zarn::test
