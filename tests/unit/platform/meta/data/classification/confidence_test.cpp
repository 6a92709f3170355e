#include <zarn/meta/data/classification/confidence.h>

#include <gtest/gtest.h>

#include <limits>
#include <stdexcept>

namespace zarn::meta::data::classification {
namespace {

TEST(MetaClassificationConfidence, ReturnsItsClassValueAndTypeName) {
    Confidence const confidence("person", 0.75);
    EXPECT_EQ(confidence.GetClass(), "person");
    EXPECT_EQ(confidence.GetValue(), 0.75);
    EXPECT_STREQ(confidence.GetTypeName(), "zarn.meta.data.classification.Confidence");
}

TEST(MetaClassificationConfidence, IsFullByDefault) { EXPECT_EQ(Confidence("").GetValue(), 1); }

TEST(MetaClassificationConfidence, AcceptsValuesFromZeroToOne) {
    EXPECT_EQ(Confidence("", 0).GetValue(), 0);
    EXPECT_EQ(Confidence("", 1).GetValue(), 1);
}

TEST(MetaClassificationConfidence, RefusesValuesOutsideZeroToOne) {
    EXPECT_THROW(Confidence("", -0.1), std::invalid_argument);
    EXPECT_THROW(Confidence("", 1.1), std::invalid_argument);
    EXPECT_THROW(Confidence("", std::numeric_limits<double>::quiet_NaN()), std::invalid_argument);
}

} // namespace
} // namespace zarn::meta::data::classification
