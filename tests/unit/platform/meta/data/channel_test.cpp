#include <zarn/meta/data/channel.h>

#include <gtest/gtest.h>

namespace zarn::meta::data {
namespace {

TEST(MetaChannel, ReturnsItsIdAndTypeName) {
    Channel const channel(4294967295U);
    EXPECT_EQ(channel.GetId(), 4294967295U);
    EXPECT_STREQ(channel.GetTypeName(), "zarn.meta.data.Channel");
}

} // namespace
} // namespace zarn::meta::data
