#include "host/video/back_off.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

namespace zarn::host::video {
namespace {

using namespace std::chrono_literals;

TEST(BackOff, DoublesUpToHalfAMinute) {
    BackOff backOff;
    std::vector<std::chrono::milliseconds> pauses;
    for (int failure = 0; failure < 7; ++failure) pauses.push_back(backOff.Fail(0s));
    EXPECT_THAT(pauses, testing::ElementsAre(1s, 2s, 4s, 8s, 16s, 30s, 30s));
}

TEST(BackOff, BeginsAnewAfterAGoodRun) {
    BackOff backOff;
    backOff.Fail(0s);
    backOff.Fail(9s);
    EXPECT_EQ(backOff.Fail(10s), 1s);
    EXPECT_EQ(backOff.Fail(0s), 2s);
}

} // namespace
} // namespace zarn::host::video
