#include "support/resource_use.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <future>
#include <stdexcept>
#include <thread>
#include <vector>

namespace zarn::test {
namespace {

using namespace std::chrono_literals;

TEST(ResourceUse, CountsThreadsAndDescriptors) {
    std::thread([] {}).join(); // with the first one, a sanitizer may start a thread of its own
    auto const before = ReadResourceUse(getpid());
    std::promise<void> end;
    std::thread thread([future = end.get_future()] { future.wait(); });
    int const descriptor = dup(STDERR_FILENO);
    auto const during = ReadResourceUse(getpid());
    end.set_value();
    thread.join();
    close(descriptor);
    EXPECT_EQ(during.threads, before.threads + 1);
    EXPECT_EQ(during.descriptors, before.descriptors + 1);
    EXPECT_EQ(ReadResourceUse(getpid()).descriptors, before.descriptors);
}

TEST(ResourceUse, CountsMemoryThatIsTouched) {
    constexpr std::size_t Size = 64 * 1024 * 1024;
    auto const before = ReadResourceUse(getpid()).memory;
    std::vector<char> const touched(Size, 'x');
    EXPECT_GE(ReadResourceUse(getpid()).memory, before + Size * 9 / 10);
}

TEST(ResourceUse, IsWaitedForNoLongerThanAllowed) {
    int looks = 0;
    AwaitResourceUse(
        getpid(), [&looks](auto const&) { return ++looks == 3; }, 10s);
    EXPECT_EQ(looks, 3);
    auto const begun = std::chrono::steady_clock::now();
    AwaitResourceUse(
        getpid(), [](auto const&) { return false; }, 100ms);
    EXPECT_LT(std::chrono::steady_clock::now() - begun, 5s);
}

TEST(ResourceUse, IsAnErrorOfNoProcess) { EXPECT_THROW(ReadResourceUse(0), std::runtime_error); }

} // namespace
} // namespace zarn::test
