#include <zarn/object/primitive.h>

#include <gtest/gtest.h>

#include <memory>

namespace zarn::object {
namespace {

TEST(ObjectPrimitive, HoldsItsValue) {
    EXPECT_EQ(Primitive<std::string>("Gate").Get(), "Gate");
    EXPECT_EQ(Primitive<unsigned short>(8554).Get(), 8554);
}

TEST(ObjectPrimitive, IsNamedByItsType) {
    EXPECT_STREQ(Primitive<bool>(true).GetTypeName(), "zarn.object.Bool");
    EXPECT_STREQ(Primitive<std::string>("").GetTypeName(), "zarn.object.String");
    EXPECT_STREQ(Primitive<unsigned short>(1).GetTypeName(), "zarn.object.UInt16");
    EXPECT_STREQ(Primitive<std::uint32_t>(1).GetTypeName(), "zarn.object.UInt32");
    EXPECT_STREQ(Primitive<std::int32_t>(1).GetTypeName(), "zarn.object.Int32");
    EXPECT_STREQ(Primitive<std::int64_t>(1).GetTypeName(), "zarn.object.Int64");
    EXPECT_STREQ(Primitive<double>(1).GetTypeName(), "zarn.object.Double");
}

TEST(ObjectPrimitive, CannotBeCastToAnotherPrimitive) {
    std::shared_ptr<Object const> const object = std::make_shared<Primitive<bool>>(true);
    EXPECT_TRUE((object->As<Primitive<bool, Object>>().Get()));
    EXPECT_THROW(object->As<Primitive<std::string>>(), BadCast);
}

} // namespace
} // namespace zarn::object
