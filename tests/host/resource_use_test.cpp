#include "support/eventually.h"
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
    auto const descriptorsBefore = ReadResourceUse(getpid()).descriptors;
    std::promise<void> end;
    std::thread thread([future = end.get_future()] { future.wait(); });
    int const descriptor = dup(STDERR_FILENO);
    auto const during = ReadResourceUse(getpid());
    end.set_value();
    thread.join();
    close(descriptor);
    EXPECT_EQ(during.descriptors, descriptorsBefore + 1);
    EXPECT_EQ(ReadResourceUse(getpid()).descriptors, descriptorsBefore);
    // The kernel still counts a joined thread for a short time.
    EXPECT_TRUE(Eventually([&] { return ReadResourceUse(getpid()).threads == during.threads - 1; }));
}

TEST(ResourceUse, CountsMemoryThatIsTouched) {
    constexpr std::size_t Size = 64 * 1024 * 1024;
    auto const before = ReadResourceUse(getpid()).memory;
    std::vector<char> const touched(Size, 'x');
    EXPECT_GE(ReadResourceUse(getpid()).memory, before + Size * 9 / 10);
}

TEST(ResourceUse, CanBeAwaitedUpToALimit) {
    int looks = 0;
    AwaitResourceUse(
        getpid(), [&looks](auto const&) { return ++looks == 3; }, 10s);
    EXPECT_EQ(looks, 3);
    auto const begun = std::chrono::steady_clock::now();
    AwaitResourceUse(
        getpid(), [](auto const&) { return false; }, 100ms);
    EXPECT_LT(std::chrono::steady_clock::now() - begun, 30s);
}

TEST(ResourceUse, FailsForAMissingProcess) { EXPECT_THROW(ReadResourceUse(0), std::runtime_error); }

} // namespace
} // namespace zarn::test
