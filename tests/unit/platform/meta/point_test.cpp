#include <zarn/meta/point.h>

#include <gtest/gtest.h>

#include <limits>
#include <stdexcept>

namespace zarn::meta {
namespace {

TEST(PointOfAPicture, TellsItsPlace) {
    EXPECT_EQ(Point(0.25, 0.75).GetX(), 0.25);
    EXPECT_EQ(Point(0.25, 0.75).GetY(), 0.75);
}

TEST(PointOfAPicture, MayLieBeyondIt) { EXPECT_EQ(Point(-3, 7), Point(-3, 7)); }

TEST(PointOfAPicture, IsFinite) {
    EXPECT_THROW(Point(std::numeric_limits<double>::quiet_NaN(), 0), std::invalid_argument);
    EXPECT_THROW(Point(0, std::numeric_limits<double>::infinity()), std::invalid_argument);
}

} // namespace
} // namespace zarn::meta
