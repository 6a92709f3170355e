#pragma once

#include "support/heap_page.h"
#include "support/temporary_folder.h"

#include <cstdint>
#include <map>
#include <string>

namespace zarn::test {

/// Exact count of a process's live heap allocations; see counted_heap.cpp. Unavailable under sanitizers, which replace
/// the same functions.
class HeapCount {
public:
    struct Use {
        std::int64_t bytes = 0;
        std::int64_t blocks = 0;
    };

    /// folder  holds the file that test and process share
    /// Throws std::system_error when the file cannot be created.
    explicit HeapCount(TemporaryFolder const& folder);
    ~HeapCount();

    HeapCount(HeapCount const&) = delete;
    HeapCount& operator=(HeapCount const&) = delete;

    /// Environment variables to pass to the process.
    std::map<std::string, std::string> const& GetEnvironment() const { return environment; }

    /// True if this build supports counting.
    bool IsCounting() const { return !environment.empty(); }

    Use Get() const { return {page->bytes, page->blocks}; }

private:
    HeapPage* page = nullptr;
    std::map<std::string, std::string> environment;
};

} // namespace zarn::test
