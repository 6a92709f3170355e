#include <service/onvif/xml_text.h>
#include <zarn/text/character.h>

#include <gtest/gtest.h>

namespace zarn::service::onvif {
namespace {

using text::IsPlainXml;
using text::IsXml;

std::string Mask(std::string const& text) { return MaskForXml(text, IsPlainXml).value_or(text); }

/// A text longer than what is tested at once, with a part in the middle.
std::string Surround(std::string const& part) { return std::string(150, 'a') + part + std::string(150, 'b'); }

TEST(MaskForXml, ReturnsNothingWhenXmlCanCarryTheText) {
    for (std::string const text :
         {"", "<a>\r\n\tGr\xC3\xBCn \xF0\x9F\x98\x80</a>", "&amp;&#x9;&#xA;&#xD;&#x20;&#xFC;&"}) {
        EXPECT_FALSE(MaskForXml(text, IsPlainXml)) << text;
        EXPECT_FALSE(MaskForXml(Surround(text), IsPlainXml)) << text;
    }
}

TEST(MaskForXml, ReplacesInvalidBytesAndKeepsTheLength) {
    EXPECT_EQ(Mask("a\x01\xE0.\xC3\xBC\xFF."), "a??.???.");
    EXPECT_EQ(Mask("\xEF\xBF\xBE"), "???");
    EXPECT_EQ(Mask("\xC3"), "?");
    EXPECT_EQ(Mask(Surround("\x02 \x03")), Surround("? ?"));
}

TEST(MaskForXml, ReplacesReferencesToControlCharacters) {
    EXPECT_EQ(Mask("a&#x2;b&#x1f;"), "a?????b??????");
    EXPECT_EQ(Mask("&#x0;&#x2"), "?????&#x2");
    EXPECT_EQ(Mask(Surround("&#x10;")), Surround("??????"));
}

TEST(MaskForXml, LeavesItToTheRuleWhetherDiscouragedCharactersStay) {
    for (std::string const text : {"\x7F", "\xC2\x85", "&#x7f;"}) {
        EXPECT_EQ(Mask(text), std::string(text.size(), '?'));
        EXPECT_FALSE(MaskForXml(text, IsXml));
    }
}

} // namespace
} // namespace zarn::service::onvif
