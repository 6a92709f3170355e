#include <bench/arrivals.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>

namespace zarn::bench {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::FloatEq;
using testing::IsEmpty;

class ArrivalsTest : public testing::Test {
protected:
    void Add(std::chrono::milliseconds at) { arrivals.Add(start + at); }

    Arrivals::Clock::time_point const start;
    Arrivals arrivals{start};
};

TEST_F(ArrivalsTest, AreNoneAtFirst) {
    EXPECT_EQ(arrivals.GetCount(), 0U);
    EXPECT_EQ(arrivals.GetTimeToFirst().count(), 0);
    EXPECT_THAT(arrivals.GetGaps(), IsEmpty());
}

TEST_F(ArrivalsTest, TellWhenTheFirstPictureCame) {
    Add(250ms);
    Add(290ms);
    EXPECT_FLOAT_EQ(arrivals.GetTimeToFirst().count(), 0.25F);
    EXPECT_EQ(arrivals.GetCount(), 2U);
}

TEST_F(ArrivalsTest, KeepTheLongestGapBeforeTheWindow) {
    Add(100ms);
    Add(600ms);
    Add(640ms);
    EXPECT_FLOAT_EQ(arrivals.GetJoiningGap().count(), 0.5F);
    EXPECT_THAT(arrivals.GetGaps(), IsEmpty());
}

TEST_F(ArrivalsTest, KeepEveryGapWithinTheWindow) {
    Add(100ms);
    arrivals.BeginWindow();
    Add(900ms); // its gap began before the window
    Add(940ms);
    Add(1190ms);
    EXPECT_THAT(arrivals.GetGaps(), ElementsAre(FloatEq(0.04F), FloatEq(0.25F)));
    EXPECT_FLOAT_EQ(arrivals.GetJoiningGap().count(), 0);
}

TEST_F(ArrivalsTest, TellHowLongThereHasBeenNoPicture) {
    Add(100ms);
    EXPECT_FLOAT_EQ(arrivals.GetOpenGap(start + 1100ms).count(), 1);
}

} // namespace
} // namespace zarn::bench
