#pragma once

#include <atomic>
#include <cstdint>

namespace zarn::test {

/// What a process and the test that watches it share, in a file that both have mapped: see counted_heap.cpp.
struct HeapPage {
    std::atomic<std::int64_t> bytes;  ///< allocated and not freed yet
    std::atomic<std::int64_t> blocks; ///< the same, as allocations
};

/// Names the file with the HeapPage.
inline constexpr char const* HeapPageVariable = "ZARN_COUNTED_HEAP";

} // namespace zarn::test
