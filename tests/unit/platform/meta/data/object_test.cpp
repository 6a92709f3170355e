#include <zarn/meta/data/classification/confidence.h>
#include <zarn/meta/data/classification/name.h>
#include <zarn/meta/data/object.h>

#include <gtest/gtest.h>

namespace zarn::meta::data {
namespace {

TEST(MetaObject, ReturnsItsId) { EXPECT_EQ(Object(4294967295U).GetId(), 4294967295U); }

TEST(MetaObject, IsAnObjectBaseWithItsOwnTypeName) {
    Object const object(1);
    EXPECT_STREQ(object.GetTypeName(), "zarn.meta.data.Object");
    EXPECT_STREQ(ObjectBase::TypeName, "zarn.meta.data.ObjectBase");
    EXPECT_EQ(object.As<ObjectBase>().GetId(), 1U);
    EXPECT_TRUE(object.Is<Container>());
}

TEST(MetaObject, HasADifferentTypeFromTheBaseObject) {
    EXPECT_NE(Object(1).GetTypeHash(), type::Hash(object::Object::TypeName));
}

TEST(MetaObject, CarriesItsClassification) {
    Object object(1);
    EXPECT_EQ(object.First<classification::Confidence>(), nullptr);
    object.Emplace<classification::Confidence>("person");
    object.Emplace<classification::Name>("visitor");
    EXPECT_EQ(object.First<classification::Confidence>()->GetClass(), "person");
    EXPECT_EQ(object.First<classification::Name>()->GetValue(), "visitor");
}

} // namespace
} // namespace zarn::meta::data
