#include "failing_new.h"

#include <cstdlib>
#include <new>

namespace {

constexpr int Never = -1;

thread_local int Succeeding = Never; ///< allocations that still succeed

} // namespace

// Replaces the standard library's operator.

void* operator new(std::size_t size) {
    bool const fails = Succeeding == 0;
    if (Succeeding != Never) --Succeeding;
    void* const memory = fails ? nullptr : std::malloc(size == 0 ? 1 : size);
    if (memory == nullptr) throw std::bad_alloc();
    return memory;
}

void* operator new(std::size_t size, std::nothrow_t const&) noexcept { return std::malloc(size == 0 ? 1 : size); }

void operator delete(void* memory) noexcept { std::free(memory); }

void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

namespace zarn::test {

FailingNew::FailingNew(int n) { Succeeding = n; }

FailingNew::~FailingNew() { Succeeding = Never; }

void FailNextNew() noexcept { Succeeding = 0; }

} // namespace zarn::test
