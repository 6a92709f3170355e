#include <zarn/chrono/add.h>

#include <gtest/gtest.h>

namespace zarn::chrono {
namespace {

using namespace std::chrono_literals;
using System = std::chrono::system_clock::time_point;
using Steady = std::chrono::steady_clock::time_point;

TEST(ChronoAdd, ReturnsTheSumWithinTheRangeOfTheClock) {
    EXPECT_EQ(Add(System(10s), 5ns), System(10s + 5ns));
    EXPECT_EQ(Add(System(10s), -11s), System(-1s));
    EXPECT_EQ(Add(Steady(10s), 0ns), Steady(10s));
}

TEST(ChronoAdd, ReachesBothEndsOfTheClockExactly) {
    EXPECT_EQ(Add(System::max() - 1ns, 1ns), System::max());
    EXPECT_EQ(Add(System::min() + 1ns, -1ns), System::min());
    EXPECT_EQ(Add(System::max(), 0ns), System::max());
    EXPECT_EQ(Add(System(0ns), std::chrono::nanoseconds::min()), System::min());
}

TEST(ChronoAdd, SaturatesAtTheEndOfTheClock) {
    EXPECT_EQ(Add(System::max() - 1ns, 2ns), System::max());
    EXPECT_EQ(Add(System(1s), std::chrono::nanoseconds::max()), System::max());
    EXPECT_EQ(Add(Steady(1s), std::chrono::nanoseconds::max()), Steady::max());
}

TEST(ChronoAdd, SaturatesAtTheBeginningOfTheClock) {
    EXPECT_EQ(Add(System::min() + 1ns, -2ns), System::min());
    EXPECT_EQ(Add(System(-1s), std::chrono::nanoseconds::min()), System::min());
}

TEST(ChronoSaturated, StaysAtTheEndsOfTheRange) {
    using Limits = std::numeric_limits<std::int64_t>;
    EXPECT_EQ(AddSaturated(2, -5), -3);
    EXPECT_EQ(AddSaturated(Limits::max(), 1), Limits::max());
    EXPECT_EQ(AddSaturated(Limits::min(), -1), Limits::min());
    EXPECT_EQ(MultiplySaturated(-2, 5), -10);
    EXPECT_EQ(MultiplySaturated(Limits::max(), 2), Limits::max());
    EXPECT_EQ(MultiplySaturated(Limits::min(), -1), Limits::max());
    EXPECT_EQ(MultiplySaturated(Limits::min(), 2), Limits::min());
    EXPECT_EQ(MultiplySaturated(2, Limits::min()), Limits::min());
}

} // namespace
} // namespace zarn::chrono
