#include "host/heap.h"

#include <gtest/gtest.h>
#include <malloc.h>

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <latch>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace zarn::host {
namespace {

#ifndef ZARN_SANITIZED // whose heap is another one

/// How many arenas the heap of this process has.
std::ptrdiff_t CountArenas() {
    char* text = nullptr;
    std::size_t size = 0;
    std::FILE* const stream = open_memstream(&text, &size);
    malloc_info(0, stream);
    std::fclose(stream);
    std::string const info(text, size);
    std::free(text);
    std::ptrdiff_t count = 0;
    for (auto at = info.find("<heap nr="); at != std::string::npos; at = info.find("<heap nr=", at + 1)) ++count;
    return count;
}

/// Threads that use the heap all at the same time, as each of them would get an arena of its own.
void AllocateOnThreads(int number) {
    std::latch all(number);
    std::vector<std::jthread> threads;
    for (int i = 0; i < number; ++i) {
        threads.emplace_back([&] {
            auto const memory = std::make_unique<char[]>(1000);
            all.arrive_and_wait();
        });
    }
}

TEST(Heap, HasFewArenasHoweverManyThreadsUseIt) {
    BoundHeap();
    AllocateOnThreads(16);
    EXPECT_LE(CountArenas(), 4);
}

TEST(Heap, GivesLargePiecesBackAlsoAfterOneHasBeenFreed) {
    BoundHeap();
    constexpr std::size_t Large = 1024 * 1024;
    std::free(std::malloc(Large)); // would move the threshold
    auto const before = mallinfo2().hblks;
    std::unique_ptr<void, decltype(&std::free)> const memory(std::malloc(Large), &std::free);
    EXPECT_EQ(mallinfo2().hblks, before + 1) << "it lies in the heap";
}

#endif

} // namespace
} // namespace zarn::host
