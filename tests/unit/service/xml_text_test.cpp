#include <service/onvif/xml_text.h>

#include <gtest/gtest.h>

namespace zarn::service::onvif {
namespace {

TEST(XmlText, IsWhatXmlCanCarry) {
    for (auto const* text : {"", "urn:uuid:1", "Gr\xC3\xBCn", "\t two\r\nlines", "\xF0\x9F\x98\x80", "\xEF\xBF\xBD"})
        EXPECT_TRUE(IsXmlText(text)) << text;
    for (auto const* text : {"\x01", "a\x1B", "\xFF", "\xC3", "\xED\xA0\x80", "\xEF\xBF\xBE", "a\xEF\xBF\xBF"})
        EXPECT_FALSE(IsXmlText(text)) << text;
}

TEST(XmlText, IsMadeOfAnyTextInOneLine) {
    EXPECT_EQ(ToXmlLine("Gr\xC3\xBCn", 100), "Gr\xC3\xBCn");
    EXPECT_EQ(ToXmlLine("a\n\x01\xE0", 100), R"(a\n\x01\xe0)");
    EXPECT_EQ(ToXmlLine("\xEF\xBF\xBE\xEF\xBF\xBF", 100), R"(\uFFFE\uFFFF)");
}

TEST(XmlText, IsCutAtTheBound) {
    EXPECT_EQ(ToXmlLine(std::string(1000, 'a'), 100).substr(0, 10), "aaaaaaaaaa");
    EXPECT_LE(ToXmlLine(std::string(1000, 'a'), 100).size(), 100U);
}

} // namespace
} // namespace zarn::service::onvif
