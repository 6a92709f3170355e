#include <zarn/meta/data/classification/name.h>

#include <gtest/gtest.h>

namespace zarn::meta::data::classification {
namespace {

TEST(MetaClassificationName, ReturnsItsValueAndTypeName) {
    EXPECT_EQ(Name("Grün").GetValue(), "Grün");
    EXPECT_EQ(Name("").GetValue(), "");
    EXPECT_STREQ(Name("").GetTypeName(), "zarn.meta.data.classification.Name");
}

} // namespace
} // namespace zarn::meta::data::classification
