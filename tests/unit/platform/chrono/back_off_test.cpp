#include <zarn/chrono/back_off.h>

#include <gtest/gtest.h>

namespace zarn::chrono {
namespace {

using namespace std::chrono_literals;

TEST(BackOff, DoublesUpToHalfAMinute) {
    BackOff backOff(1s);
    for (auto const pause : {1s, 2s, 4s, 8s, 16s, 30s, 30s}) EXPECT_EQ(backOff.Fail(0s), pause);
}

TEST(BackOff, StartsWithTheFirstPauseItIsGiven) {
    BackOff backOff(500ms);
    for (auto const pause : {500ms, 1000ms, 2000ms, 4000ms, 8000ms, 16000ms, 30000ms, 30000ms}) {
        EXPECT_EQ(backOff.Fail(0s, 0), pause);
    }
}

TEST(BackOff, IsShortenedRandomlyByUpToHalf) {
    BackOff backOff(500ms);
    EXPECT_EQ(backOff.Fail(0s, 1), 250ms);
    EXPECT_EQ(backOff.Fail(0s, 0.5), 750ms);
}

TEST(BackOff, StartsOverOnlyAfterAGoodRun) {
    BackOff backOff(500ms);
    backOff.Fail(0s);
    EXPECT_EQ(backOff.Fail(9999ms), 1000ms);
    EXPECT_EQ(backOff.Fail(10s), 500ms);
    EXPECT_EQ(backOff.Fail(0s), 1000ms);
    backOff.Reset();
    EXPECT_EQ(backOff.Fail(0s), 500ms);
}

} // namespace
} // namespace zarn::chrono
