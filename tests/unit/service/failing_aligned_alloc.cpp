#include "failing_aligned_alloc.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>

namespace {

thread_local bool Failing = false;

} // namespace

/// Replaces the C library's function.
extern "C" void* aligned_alloc(std::size_t alignment, std::size_t size) noexcept {
    void* memory = nullptr;
    if (Failing || posix_memalign(&memory, std::max(alignment, sizeof(void*)), size) != 0) return nullptr;
    return memory;
}

namespace zarn::test {

FailingAlignedAlloc::FailingAlignedAlloc() { Failing = true; }

FailingAlignedAlloc::~FailingAlignedAlloc() { Failing = false; }

} // namespace zarn::test
