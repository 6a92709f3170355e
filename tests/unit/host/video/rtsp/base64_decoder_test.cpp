#include "host/video/rtsp/base64_decoder.h"

#include <gtest/gtest.h>

namespace zarn::host::video::rtsp {
namespace {

TEST(Base64Decoder, DecodesWithAndWithoutPadding) {
    EXPECT_EQ(Base64Decoder().Decode("T1BU"), "OPT");
    EXPECT_EQ(Base64Decoder().Decode("T1A="), "OP");
    EXPECT_EQ(Base64Decoder().Decode("Tw=="), "O");
    EXPECT_EQ(Base64Decoder().Decode("+/+/"), "\xFB\xFF\xBF");
    EXPECT_EQ(Base64Decoder().Decode(""), "");
}

TEST(Base64Decoder, DecodesMessagesThatWereEncodedOneByOne) {
    EXPECT_EQ(Base64Decoder().Decode("Tw==T1A=T1BU"), "OOPOPT");
}

TEST(Base64Decoder, ContinuesWhereThePartBeforeEnded) {
    Base64Decoder decoder;
    EXPECT_EQ(decoder.Decode("T1"), "");
    EXPECT_EQ(decoder.Decode("B"), "");
    EXPECT_EQ(decoder.Decode("UT1"), "OPT");
    EXPECT_EQ(decoder.Decode("A="), "OP");
}

TEST(Base64Decoder, SkipsWhiteSpace) { EXPECT_EQ(Base64Decoder().Decode("T1\r\nB U\n"), "OPT"); }

TEST(Base64Decoder, RefusesAnythingElse) {
    for (auto const* text : {"T1B$", "=", "T=BU", "T1=U", "T1==T=", "====", "-_-_"})
        EXPECT_EQ(Base64Decoder().Decode(text), std::nullopt) << text;
}

} // namespace
} // namespace zarn::host::video::rtsp
