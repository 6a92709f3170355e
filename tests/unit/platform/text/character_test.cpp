#include <zarn/text/character.h>

#include <gtest/gtest.h>

#include <array>
#include <string>

namespace zarn::text {
namespace {

/// A text and the formats that allow it.
struct Case {
    std::string_view text;
    bool utf8;
    bool line;
    bool xml;
    bool plainXml;
};

constexpr std::array Cases{
    Case{"", true, true, true, true},
    Case{"urn:uuid:1", true, true, true, true},
    Case{"Gr\xC3\xBCn", true, true, true, true},
    Case{"\xF0\x9F\x98\x80", true, true, true, true},
    Case{"\xEF\xBF\xBD", true, true, true, true},
    Case{"\t two\r\nlines", true, false, true, true},
    Case{"del \x7F", true, false, true, false},
    Case{"C1 \xC2\x85", true, true, true, false},
    Case{"\x01", true, false, false, false},
    Case{"a\x1B", true, false, false, false},
    Case{std::string_view("a\0", 2), true, false, false, false},
    Case{"\xEF\xBF\xBE", true, true, false, false},
    Case{"a\xEF\xBF\xBF", true, true, false, false},
    Case{"\xFF", false, true, false, false},
    Case{"cut off \xC3", false, true, false, false},
    Case{"overlong \xC0\xAF", false, true, false, false},
    Case{"surrogate \xED\xA0\x80", false, true, false, false},
    Case{"beyond \xF4\x90\x80\x80", false, true, false, false},
};

TEST(Text, IsToldApartByItsCharacters) {
    for (auto const& [text, utf8, line, xml, plainXml] : Cases) {
        EXPECT_EQ(IsUtf8(text), utf8) << text;
        EXPECT_EQ(IsLine(text), line) << text;
        EXPECT_EQ(IsXml(text), xml) << text;
        EXPECT_EQ(IsPlainXml(text), plainXml) << text;
        EXPECT_EQ(IsXmlLine(text), xml && line) << text;
    }
}

TEST(IsAlphanumeric, IsTrueForAsciiLettersAndDigits) {
    for (char const each : std::string_view("09AZaz")) EXPECT_TRUE(IsAlphanumeric(each)) << each;
    for (char const each : std::string_view("/:@[`{\0\xe4", 8)) EXPECT_FALSE(IsAlphanumeric(each)) << each;
}

TEST(CutShort, KeepsCharactersWhole) {
    EXPECT_EQ(CutShort("abc", 3), "abc");
    EXPECT_EQ(CutShort("abcd", 3), "abc");
    EXPECT_EQ(CutShort("a\xE2\x82\xAC", 3), "a");
    EXPECT_EQ(CutShort("\xE2\x82\xAC", 2), "");
}

TEST(PercentEncode, WritesOtherBytesAsTwoDigits) {
    EXPECT_EQ(PercentEncode("a b/\xC3\xBC%", [](char each) { return each == 'a' || each == '/'; }),
              "a%20%62/%C3%BC%25");
}

TEST(Trim, RemovesWhiteSpaceAtBothEnds) {
    EXPECT_EQ(Trim(" \t\r\na b\n"), "a b");
    EXPECT_EQ(Trim(" \n"), "");
    EXPECT_EQ(Trim(""), "");
    EXPECT_EQ(Trim(" \na", " "), "\na");
}

} // namespace
} // namespace zarn::text
