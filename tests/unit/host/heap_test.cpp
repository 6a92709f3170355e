#include "host/heap.h"

#include <gtest/gtest.h>
#include <malloc.h>
#include <unistd.h>

#include <chrono>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <latch>
#include <memory>
#include <new>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace zarn::host {
namespace {

#ifndef ZARN_SANITIZED // sanitizers replace the heap

/// Number of heap arenas in this process.
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

/// Uses the heap from several threads at once, so that by default each thread would get its own arena.
void AllocateOnThreads(int number) {
    std::latch all(number);
    std::vector<std::jthread> threads;
    threads.reserve(static_cast<std::size_t>(number));
    for (int i = 0; i < number; ++i) {
        threads.emplace_back([&] {
            auto const memory = std::make_unique<char[]>(1000);
            all.arrive_and_wait();
        });
    }
}

TEST(Heap, HasFewArenasForManyThreads) {
    LimitHeap();
    AllocateOnThreads(16);
    EXPECT_LE(CountArenas(), 4);
}

TEST(Heap, KeepsMappingLargeBlocksAfterOneIsFreed) {
    LimitHeap();
    constexpr std::size_t Large = 8 * 1024 * 1024;   // more than other tests leave free
    void* const volatile first = std::malloc(Large); // volatile prevents elision
    std::free(first);                                // would raise the default threshold
    auto const before = mallinfo2().hblks;
    std::unique_ptr<void, decltype(&std::free)> const memory(std::malloc(Large), &std::free);
    EXPECT_EQ(mallinfo2().hblks, before + 1) << "not allocated by mmap";
}

TEST(Heap, MapsThePictureOfASmallVideo) {
    LimitHeap();
    auto const before = mallinfo2().hblks;
    std::vector<std::unique_ptr<void, decltype(&std::free)>> pictures;
    // Other tests may have left enough free heap for some pictures.
    while (mallinfo2().hblks == before && pictures.size() < 100) {
        pictures.emplace_back(std::malloc(640 * 480 * 3 / 2), &std::free);
    }
    EXPECT_EQ(mallinfo2().hblks, before + 1);
}

TEST(Heap, DoesNotMapBlocksOfTheSizeOfAnExchange) {
    LimitHeap();
    auto const before = mallinfo2().hblks;
    std::unique_ptr<void, decltype(&std::free)> const memory(std::malloc(160 * 1024), &std::free);
    EXPECT_EQ(mallinfo2().hblks, before) << "each exchange would map and unmap memory";
}

/// Resident memory of this process that belongs to no file, in bytes. Source: proc_pid_statm(5).
std::ptrdiff_t GetAnonymousMemory() {
    std::ptrdiff_t size = 0;
    std::ptrdiff_t resident = 0;
    std::ptrdiff_t shared = 0;
    std::ifstream("/proc/self/statm") >> size >> resident >> shared;
    return (resident - shared) * sysconf(_SC_PAGESIZE);
}

TEST(Heap, GivesBackWhatLiesBelowUsedMemory) {
    LimitHeap();
    constexpr std::size_t Size = 100'000;
    constexpr int Number = 300;
    std::vector<std::vector<char>> blocks;
    for (int i = 0; i < Number; ++i) blocks.emplace_back(Size, 'x');
    auto const last = std::move(blocks.back());
    blocks.clear();
    auto const before = GetAnonymousMemory();
    TrimHeap();
    EXPECT_LT(GetAnonymousMemory(), before - std::ptrdiff_t{Size} * Number / 2);
}

#endif

TEST(Heap, WaitsForMemoryUpToALimit) {
    using namespace std::chrono_literals;
    using Clock = std::chrono::steady_clock;
    RetryAllocations(100ms);
    auto const handler = std::get_new_handler();
    ASSERT_NE(handler, nullptr);
    auto const before = CountRetriedAllocations();
    auto const begin = Clock::now();
    // Simulates operator new without any memory.
    auto const need = [&] {
        for (int i = 0; i < 100'000; ++i) handler();
    };
    EXPECT_THROW(need(), std::bad_alloc);
    auto const waited = Clock::now() - begin;
    EXPECT_GE(waited, 100ms);
    EXPECT_LT(waited, 60s);
    EXPECT_GT(CountRetriedAllocations(), before);
    std::this_thread::sleep_for(5ms); // after this gap, a call counts as a new allocation
    EXPECT_NO_THROW(handler()) << "a new allocation must be retried";
}

} // namespace
} // namespace zarn::host
