#include <zarn/object/bad_cast.h>

#include <gtest/gtest.h>

#include <type_traits>

namespace zarn::object {
namespace {

TEST(BadCast, ContainsTheNameOfTheRequestedType) { EXPECT_EQ(BadCast("unknown").GetTypeName(), "unknown"); }

TEST(BadCast, NamesTypeOnlyWhenNothingElseIsKnown) { EXPECT_STREQ(BadCast("A").what(), "object is not a A"); }

TEST(BadCast, NamesPathAndActualType) {
    EXPECT_STREQ(BadCast("A", "settings.x", "B").what(), "settings.x is a B, not a A");
}

TEST(BadCast, IsCaughtAsStdBadCast) { EXPECT_THROW(throw BadCast("A"), std::bad_cast); }

TEST(BadCast, IsNothrowCopyable) { static_assert(std::is_nothrow_copy_constructible_v<BadCast>); }

} // namespace
} // namespace zarn::object
