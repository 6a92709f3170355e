#pragma once

#include "support/heap_page.h"
#include "support/temporary_folder.h"

#include <cstdint>
#include <map>
#include <string>

namespace zarn::test {

/// Exactly what a process has allocated and not freed: see counted_heap.cpp. Under a sanitizer, which replaces the same
/// functions, nothing is counted.
class HeapCount {
public:
    struct Use {
        std::int64_t bytes = 0;
        std::int64_t blocks = 0;
    };

    /// folder  takes the file that test and process share
    /// Throws std::system_error when it cannot be made.
    explicit HeapCount(TemporaryFolder const& folder);
    ~HeapCount();

    HeapCount(HeapCount const&) = delete;
    HeapCount& operator=(HeapCount const&) = delete;

    /// What the environment of the process needs.
    std::map<std::string, std::string> const& GetEnvironment() const { return environment; }

    /// Whether this build counts.
    bool IsCounting() const { return !environment.empty(); }

    Use Get() const { return {page->bytes, page->blocks}; }

private:
    HeapPage* page = nullptr;
    std::map<std::string, std::string> environment;
};

} // namespace zarn::test
