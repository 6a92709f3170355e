#include <zarn/meta/data/zone.h>

#include <gtest/gtest.h>

namespace zarn::meta::data {
namespace {

TEST(MetaZone, ReturnsItsTypeAndTypeName) {
    EXPECT_EQ(Zone(Zone::Field).GetType(), 0U);
    EXPECT_EQ(Zone(Zone::Line).GetType(), 1U);
    EXPECT_STREQ(Zone(Zone::Line).GetTypeName(), "zarn.meta.data.Zone");
}

TEST(MetaZone, KeepsANumberOfTheHost) { EXPECT_EQ(Zone(42).GetType(), 42U); }

} // namespace
} // namespace zarn::meta::data
