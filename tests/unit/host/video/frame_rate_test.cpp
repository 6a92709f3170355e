#include "host/video/frame_rate.h"

#include <gtest/gtest.h>

namespace zarn::host::video {
namespace {

TEST(FrameRate, IsAFractionOrAWholeNumber) {
    EXPECT_EQ(ParseFrameRate("25"), (FrameRate{25, 1}));
    EXPECT_EQ(ParseFrameRate("30000/1001"), (FrameRate{30000, 1001}));
    EXPECT_EQ(ParseFrameRate("60/2"), (FrameRate{60, 2}));
    EXPECT_EQ(ParseFrameRate("2147483647/2147483647"), (FrameRate{2147483647, 2147483647}));
}

TEST(FrameRate, MayHaveValuesThatMakeNoSense) {
    EXPECT_EQ(ParseFrameRate("0/1"), (FrameRate{0, 1}));
    EXPECT_EQ(ParseFrameRate("25/0"), (FrameRate{25, 0}));
}

TEST(FrameRate, IsNothingElse) {
    for (auto const* text :
         {"", "/", "25/", "/1", "-25", "25/-1", "25.0", " 25", "25 ", "25/1/1", "2147483648", "fast", "+25"}) {
        EXPECT_FALSE(ParseFrameRate(text)) << text;
    }
}

} // namespace
} // namespace zarn::host::video
