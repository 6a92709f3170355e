#include "host/signals.h"

#include <gtest/gtest.h>

#include <csignal>
#include <thread>

namespace zarn::host {
namespace {

using namespace std::chrono_literals;

TEST(Signals, StayPendingWhileHeldAndArriveOnRelease) {
    static int count = 0;
    std::signal(SIGHUP, [](int) { ++count; });
    BlockSignals({SIGTERM, SIGHUP});
    EXPECT_FALSE(IsPending({SIGTERM, SIGHUP}));
    raise(SIGHUP);
    EXPECT_FALSE(IsPending({SIGTERM}));
    EXPECT_TRUE(IsPending({SIGTERM, SIGHUP}));
    EXPECT_EQ(count, 0);
    UnblockSignals({SIGTERM, SIGHUP});
    EXPECT_FALSE(IsPending({SIGTERM, SIGHUP}));
    EXPECT_EQ(count, 1);
}

TEST(SignalsDeathTest, EndAProcessThatExceedsItsDeadline) {
    EXPECT_EXIT(
        {
            EndWithin(50ms);
            std::this_thread::sleep_for(20s);
        },
        testing::ExitedWithCode(0), "shutdown timed out; exiting");
}

} // namespace
} // namespace zarn::host
