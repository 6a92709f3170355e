#include "host/video/viewer_clock.h"

#include <gtest/gtest.h>

namespace zarn::host::video {
namespace {

using namespace std::chrono_literals;

TEST(ViewerClock, BeginsAtZero) { EXPECT_EQ(ViewerClock(7s, 8s).Map(7s), 0s); }

TEST(ViewerClock, PlaysTheBacklogFiftyTimesFaster) {
    EXPECT_EQ(ViewerClock(7s, 9s).Map(8s), 20ms);
    EXPECT_EQ(ViewerClock(7s, 9s).Map(9s), 40ms);
}

TEST(ViewerClock, ContinuesInRealTime) { EXPECT_EQ(ViewerClock(7s, 9s).Map(12s), 3040ms); }

TEST(ViewerClock, IsNeverNegative) { EXPECT_EQ(ViewerClock(7s, 9s).Map(1s), 0s); }

TEST(ViewerClock, ContinuesWhenThePresentIsBeforeTheFirst) { EXPECT_EQ(ViewerClock(7s, 6s).Map(8s), 1s); }

TEST(ViewerClock, KeepsTheOrder) {
    ViewerClock const clock(1s, 3s);
    for (auto time = 1s + 1ms; time < 6s; time += 1ms) ASSERT_LT(clock.Map(time - 1ms), clock.Map(time));
}

} // namespace
} // namespace zarn::host::video
