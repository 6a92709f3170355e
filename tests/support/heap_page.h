#pragma once

#include <atomic>
#include <cstdint>

namespace zarn::test {

/// Counters shared by a process and the test that watches it, in a file that both map; see counted_heap.cpp.
struct HeapPage {
    std::atomic<std::int64_t> bytes;  ///< allocated and not freed yet
    std::atomic<std::int64_t> blocks; ///< number of those allocations
};

/// Names the file with the HeapPage.
inline constexpr char const* HeapPageVariable = "ZARN_COUNTED_HEAP";

} // namespace zarn::test
