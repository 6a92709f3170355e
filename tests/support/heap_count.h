#pragma once

#include "support/heap_page.h"
#include "support/temporary_folder.h"

#include <cstdint>
#include <map>
#include <string>

namespace zarn::test {

/// What a process has allocated and not freed, exactly: see counted_heap.cpp. Under a sanitizer, which stands before
/// the same functions, nothing is counted.
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

    /// What the process has to find in its environment.
    std::map<std::string, std::string> const& GetEnvironment() const { return environment; }

    /// Whether there is a count in this build.
    bool IsCounting() const { return !environment.empty(); }

    Use Get() const { return {page->bytes, page->blocks}; }

private:
    HeapPage* page = nullptr;
    std::map<std::string, std::string> environment;
};

} // namespace zarn::test
