#include <zarn/type/flags.h>

#include <gtest/gtest.h>

namespace zarn::type {
namespace {

enum class Colour : unsigned short { Red = 1, Green = 2, Blue = 64 };

using Colours = Flags<Colour, unsigned short, 64>;

TEST(Flags, AreEmptyByDefault) {
    EXPECT_EQ(Colours().GetValue(), 0);
    EXPECT_FALSE(Colours().Has(Colour::Red));
}

TEST(Flags, HaveTheFlagTheyAreConstructedFrom) {
    Colours const colours = Colour::Green;
    EXPECT_TRUE(colours.Has(Colour::Green));
    EXPECT_FALSE(colours.Has(Colour::Red));
}

TEST(Flags, CanBeConstructedFromARawValue) { EXPECT_EQ(Colours(3), Colours(Colour::Red) | Colour::Green); }

TEST(Flags, HaveASetOnlyWhenAllOfItIsSet) {
    EXPECT_TRUE(Colours(67).Has(Colours(65)));
    EXPECT_FALSE(Colours(66).Has(Colours(65)));
}

TEST(Flags, CombineToTheUnion) { EXPECT_EQ((Colours(Colour::Red) | Colour::Blue).GetValue(), 65); }

TEST(Flags, RefuseARawValueAboveTheirLargestFlag) {
    EXPECT_NO_THROW(Colours(127));
    EXPECT_THROW(Colours(128), std::invalid_argument);
}

} // namespace
} // namespace zarn::type
