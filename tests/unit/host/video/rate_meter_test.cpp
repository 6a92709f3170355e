#include "host/video/rate_meter.h"

#include <gtest/gtest.h>

namespace zarn::host::video {
namespace {

using namespace std::chrono_literals;

std::optional<FrameRate> Measure(std::chrono::nanoseconds interval, int units) {
    RateMeter meter;
    for (int unit = 0; unit < units; ++unit) meter.Add(interval * unit);
    return meter.GetRate();
}

TEST(RateMeter, KnowsNothingAtFirst) {
    EXPECT_EQ(Measure(40ms, 0), std::nullopt);
    EXPECT_EQ(Measure(40ms, 5), std::nullopt);
}

TEST(RateMeter, FindsUsualRates) {
    EXPECT_EQ(Measure(40ms, 300), (FrameRate{25, 1}));
    EXPECT_EQ(Measure(33'366'667ns, 300), (FrameRate{30000, 1001}));
    EXPECT_EQ(Measure(33'333'333ns, 300), (FrameRate{30, 1}));
    EXPECT_EQ(Measure(1s, 20), (FrameRate{1, 1}));
}

TEST(RateMeter, FindsAUsualRateInUnevenTimes) {
    RateMeter meter;
    for (int unit = 0; unit < 300; ++unit) meter.Add(40ms * unit + 3ms * (unit % 3));
    EXPECT_EQ(meter.GetRate(), (FrameRate{25, 1}));
}

TEST(RateMeter, ReportsUnusualRatesInHundredths) { EXPECT_EQ(Measure(55ms, 300), (FrameRate{1818, 100})); }

TEST(RateMeter, FollowsAChange) {
    RateMeter meter;
    for (int unit = 0; unit < 100; ++unit) meter.Add(40ms * unit);
    for (int unit = 1; unit < 200; ++unit) meter.Add(4s + 100ms * unit);
    EXPECT_EQ(meter.GetRate(), (FrameRate{10, 1}));
}

TEST(RateMeter, IgnoresTimesThatDoNotIncrease) {
    RateMeter meter;
    for (int unit = 0; unit < 20; ++unit) meter.Add(0s);
    EXPECT_EQ(meter.GetRate(), std::nullopt);
}

TEST(RateMeter, KnowsNoRateAfterAReset) {
    RateMeter meter;
    for (int unit = 0; unit < 20; ++unit) meter.Add(40ms * unit);
    meter.Reset();
    EXPECT_EQ(meter.GetRate(), std::nullopt);
}

} // namespace
} // namespace zarn::host::video
