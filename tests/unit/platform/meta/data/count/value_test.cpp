#include <zarn/meta/data/count/value.h>

#include <gtest/gtest.h>

namespace zarn::meta::data::count {
namespace {

TEST(MetaCountValue, ReturnsItsValueAndTypeName) {
    EXPECT_EQ(Value(INT32_MIN).GetValue(), INT32_MIN);
    EXPECT_STREQ(Value(3).GetTypeName(), "zarn.meta.data.count.Value");
}

} // namespace
} // namespace zarn::meta::data::count
