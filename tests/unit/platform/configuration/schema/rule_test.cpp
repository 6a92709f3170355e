#include <zarn/configuration/schema/rule.h>

#include <gtest/gtest.h>

#include <string>

namespace zarn::configuration::schema {
namespace {

TEST(Rule, OfANumberIncludesBothBounds) {
    auto const rule = Between(2, 4);
    EXPECT_EQ(rule.text, "a number from 2 to 4");
    EXPECT_FALSE(rule.accepts(1));
    EXPECT_TRUE(rule.accepts(2));
    EXPECT_TRUE(rule.accepts(4));
    EXPECT_FALSE(rule.accepts(5));
}

TEST(Rule, OfALineRefusesWhatXmlCannotCarry) {
    auto const rule = Line();
    EXPECT_TRUE(rule.accepts(""));
    EXPECT_TRUE(rule.accepts("Größe 東 <&>"));
    EXPECT_TRUE(rule.accepts(std::string(256, 'a')));
    EXPECT_FALSE(rule.accepts(std::string(257, 'a')));
    for (auto const* text : {"a\nb", "a\tb", "\x7f", "\xff", "\xEF\xBF\xBE", "\xEF\xBF\xBF", "\xED\xA0\x80"}) {
        EXPECT_FALSE(rule.accepts(text)) << text;
    }
    EXPECT_FALSE(rule.accepts(std::string("a\0b", 3)));
}

TEST(Rule, OfALineCountsCharactersNotBytes) {
    auto const rule = Line(3);
    EXPECT_EQ(rule.text, "a line of at most 3 characters of UTF-8 without those that XML cannot carry");
    EXPECT_TRUE(rule.accepts("東京都"));
    EXPECT_FALSE(rule.accepts("東京都x"));
    EXPECT_FALSE(rule.accepts("a\nb"));
}

} // namespace
} // namespace zarn::configuration::schema
