#include <service/onvif/xml_text.h>

#include <gtest/gtest.h>

namespace zarn::service::onvif {
namespace {

std::string Mask(std::string text) {
    MaskForXml(text);
    return text;
}

TEST(XmlText, IsWhatXmlCanCarry) {
    for (auto const* text : {"", "urn:uuid:1", "Gr\xC3\xBCn", "\t two\r\nlines", "\xF0\x9F\x98\x80", "\xEF\xBF\xBD"})
        EXPECT_TRUE(IsXmlText(text)) << text;
    for (auto const* text : {"\x01", "a\x1B", "\xFF", "\xC3", "\xED\xA0\x80", "\xEF\xBF\xBE", "a\xEF\xBF\xBF"})
        EXPECT_FALSE(IsXmlText(text)) << text;
}

TEST(XmlText, StaysAsItIsWhenItIsMasked) {
    for (std::string const text : {"", "<a>\r\n\tGr\xC3\xBCn \xF0\x9F\x98\x80</a>"}) EXPECT_EQ(Mask(text), text);
}

TEST(XmlText, IsMadeOfAnyTextOfTheSameLength) {
    EXPECT_EQ(Mask("a\x01\xE0.\xC3\xBC\xFF."), "a??.???.");
    EXPECT_EQ(Mask("\xEF\xBF\xBE"), "???");
    EXPECT_EQ(Mask("\xC3"), "?");
}

} // namespace
} // namespace zarn::service::onvif
