#include "host/events/reconnect_delay.h"

#include <gtest/gtest.h>

namespace zarn::host::events {
namespace {

using namespace std::chrono_literals;

TEST(ReconnectDelay, DoublesFromHalfASecondToHalfAMinute) {
    ReconnectDelay delay;
    for (auto const pause : {500ms, 1000ms, 2000ms, 4000ms, 8000ms, 16000ms, 30000ms, 30000ms}) {
        EXPECT_EQ(delay.Fail(0s, 0), pause);
    }
}

TEST(ReconnectDelay, IsShortenedByChanceToItsHalfAtMost) {
    ReconnectDelay delay;
    EXPECT_EQ(delay.Fail(0s, 1), 250ms);
    EXPECT_EQ(delay.Fail(0s, 0.5), 750ms);
}

TEST(ReconnectDelay, BeginsAnewAfterAGoodRunOnly) {
    ReconnectDelay delay;
    delay.Fail(0s, 0);
    EXPECT_EQ(delay.Fail(9999ms, 0), 1000ms);
    EXPECT_EQ(delay.Fail(10s, 0), 500ms);
    delay.Reset();
    EXPECT_EQ(delay.Fail(0s, 0), 500ms);
}

} // namespace
} // namespace zarn::host::events
