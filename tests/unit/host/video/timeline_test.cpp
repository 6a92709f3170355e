#include "host/video/timeline.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace zarn::host::video {
namespace {

using namespace std::chrono_literals;
using Time = Timeline::Time;

SourceTimes Coded(Time presentation, Time decoding) { return {presentation, decoding, std::nullopt}; }

SourceTimes Shown(Time presentation) { return {presentation, std::nullopt, 40ms}; }

TEST(Timeline, BeginsWhenTheFirstAccessUnitComes) {
    Timeline timeline;
    auto const stamp = timeline.Place(Coded(100ms, 20ms), 5s);
    EXPECT_EQ(stamp.decoding, 5s);
    EXPECT_EQ(stamp.presentation, 5080ms);
}

TEST(Timeline, KeepsTheStepsOfTheSource) {
    Timeline timeline;
    timeline.Place(Coded(0ms, 0ms), 5s);
    EXPECT_EQ(timeline.Place(Coded(40ms, 40ms), 9s).decoding, 5040ms);
    EXPECT_EQ(timeline.Place(Coded(140ms, 140ms), 9s).decoding, 5140ms);
}

TEST(Timeline, ContinuesANewRunOneIntervalAfterTheOld) {
    Timeline timeline;
    timeline.Place(Coded(0ms, 0ms), 1s);
    timeline.Place(Coded(50ms, 50ms), 1050ms);
    timeline.BeginRun();
    EXPECT_EQ(timeline.Place(Coded(7s, 7s), 1110ms).decoding, 1100ms);
}

TEST(Timeline, ContinuesAfterASingleAccessUnitByItsDuration) {
    Timeline timeline;
    timeline.Place({0ms, 0ms, 100ms}, 1s);
    timeline.BeginRun();
    EXPECT_EQ(timeline.Place({0ms, 0ms, 100ms}, 1100ms).decoding, 1100ms);
}

TEST(Timeline, KeepsTheRealGapAfterAPause) {
    Timeline timeline;
    timeline.Place(Coded(0ms, 0ms), 1s);
    timeline.BeginRun();
    EXPECT_EQ(timeline.Place(Coded(0ms, 0ms), 20s).decoding, 20s);
}

TEST(Timeline, TreatsAJumpAsANewRun) {
    for (auto const jump : {Time(-1h), Time(1h)}) {
        Timeline timeline;
        timeline.Place(Coded(2h, 2h), 1s);
        timeline.Place(Coded(2h + 40ms, 2h + 40ms), 1040ms);
        EXPECT_EQ(timeline.Place(Coded(2h + jump, 2h + jump), 1080ms).decoding, 1080ms);
    }
}

TEST(Timeline, NeverGoesBackInDecodingOrder) {
    Timeline timeline;
    timeline.Place(Coded(100ms, 100ms), 1s);
    EXPECT_EQ(timeline.Place(Coded(100ms, 60ms), 1s).decoding, 1s);
}

TEST(Timeline, KeepsPresentationOrderOfASourceWithoutDecodingTimes) {
    Timeline timeline;
    timeline.Place(Shown(0ms), 1s);
    EXPECT_EQ(timeline.Place(Shown(120ms), 1s).presentation, 1120ms);
    EXPECT_EQ(timeline.Place(Shown(40ms), 1s).presentation, 1040ms);
    EXPECT_EQ(timeline.Place(Shown(80ms), 1s).presentation, 1080ms);
}

TEST(Timeline, SpreadsASourceWithoutDecodingTimesEvenly) {
    Timeline timeline;
    std::vector<Time> decoding;
    for (auto const presentation : {0ms, 160ms, 80ms, 40ms, 120ms}) {
        decoding.push_back(timeline.Place(Shown(presentation), 1s).decoding);
    }
    EXPECT_EQ(decoding, (std::vector<Time>{1000ms, 1040ms, 1080ms, 1120ms, 1160ms}));
}

TEST(Timeline, FollowsASourceWithWrongDurations) {
    Timeline timeline;
    Time newest{0};
    for (auto time = 0ms; time <= 60s; time += 80ms) newest = timeline.Place(Shown(time), 1s).decoding;
    EXPECT_GE(newest, 60s);
    EXPECT_LE(newest, 61s);
}

TEST(Timeline, ContinuesWithoutTimes) {
    Timeline timeline;
    timeline.Place({}, 1s);
    EXPECT_EQ(timeline.Place({}, 1s).decoding, 1040ms);
    EXPECT_EQ(timeline.Place({std::nullopt, std::nullopt, 100ms}, 1s).decoding, 1080ms);
    EXPECT_EQ(timeline.Place({}, 1s).presentation, 1180ms);
}

} // namespace
} // namespace zarn::host::video
