#include <zarn/meta/box.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <stdexcept>

namespace zarn::meta {
namespace {

using testing::HasSubstr;
using testing::ThrowsMessage;

TEST(Box, ReturnsItsCorners) {
    Box const box({0.125, 0.25}, {0.5, 0.75});
    EXPECT_EQ(box.GetTopLeft(), Point(0.125, 0.25));
    EXPECT_EQ(box.GetBottomRight(), Point(0.5, 0.75));
}

TEST(Box, MayBeEmptyOrExceedThePicture) {
    EXPECT_EQ(Box({0.5, 0.5}, {0.5, 0.5}).GetTopLeft(), Point(0.5, 0.5));
    EXPECT_EQ(Box({-1, -1}, {2, 2}).GetBottomRight(), Point(2, 2));
}

TEST(Box, RefusesReversedCorners) {
    EXPECT_THAT(
        [] {
            Box({0.75, 0}, {0.5, 1});
        },
        ThrowsMessage<std::invalid_argument>(HasSubstr("left and right: 0.75")));
    EXPECT_THAT([] { Box({0, 1}, {1, 0.5}); }, ThrowsMessage<std::invalid_argument>(HasSubstr("top and bottom: 1.0")));
}

TEST(PointOfAPicture, ReturnsItsCoordinates) {
    EXPECT_EQ(Point(0.25, 0.75).GetX(), 0.25);
    EXPECT_EQ(Point(0.25, 0.75).GetY(), 0.75);
}

TEST(PointOfAPicture, MayLieBeyondIt) { EXPECT_EQ(Point(-3, 7), Point(-3, 7)); }

TEST(PointOfAPicture, RefusesNonFiniteCoordinates) {
    EXPECT_THROW(Point(std::numeric_limits<double>::quiet_NaN(), 0), std::invalid_argument);
    EXPECT_THROW(Point(0, std::numeric_limits<double>::infinity()), std::invalid_argument);
}

} // namespace
} // namespace zarn::meta
