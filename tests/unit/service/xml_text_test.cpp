#include <service/onvif/xml_text.h>

#include <gtest/gtest.h>

namespace zarn::service::onvif {
namespace {

std::string Mask(std::string text) {
    MaskForXml(text);
    return text;
}

TEST(XmlText, StaysUnchangedWhenMasked) {
    for (std::string const text : {"", "<a>\r\n\tGr\xC3\xBCn \xF0\x9F\x98\x80</a>"}) EXPECT_EQ(Mask(text), text);
}

TEST(XmlText, ReplacesInvalidBytesAndKeepsTheLength) {
    EXPECT_EQ(Mask("a\x01\xE0.\xC3\xBC\xFF."), "a??.???.");
    EXPECT_EQ(Mask("\xEF\xBF\xBE"), "???");
    EXPECT_EQ(Mask("\xC3"), "?");
}

} // namespace
} // namespace zarn::service::onvif
