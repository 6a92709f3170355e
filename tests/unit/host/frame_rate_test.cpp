#include "host/frame_rate.h"

#include <gtest/gtest.h>

namespace zarn::host {
namespace {

TEST(FrameRate, IsAFractionOrAWholeNumber) {
    EXPECT_EQ(ParseFrameRate("25"), std::pair(25, 1));
    EXPECT_EQ(ParseFrameRate("30000/1001"), std::pair(30000, 1001));
    EXPECT_EQ(ParseFrameRate("60/2"), std::pair(60, 2));
    EXPECT_EQ(ParseFrameRate("2147483647/2147483647"), std::pair(2147483647, 2147483647));
}

TEST(FrameRate, MayHaveValuesThatMakeNoSense) {
    EXPECT_EQ(ParseFrameRate("0/1"), std::pair(0, 1));
    EXPECT_EQ(ParseFrameRate("25/0"), std::pair(25, 0));
}

TEST(FrameRate, IsNothingElse) {
    for (auto const* text :
         {"", "/", "25/", "/1", "-25", "25/-1", "25.0", " 25", "25 ", "25/1/1", "2147483648", "fast", "+25"}) {
        EXPECT_FALSE(ParseFrameRate(text)) << text;
    }
}

} // namespace
} // namespace zarn::host
