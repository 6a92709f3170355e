#include <zarn/logging/format.h>

#include <boost/asio/ip/address_v4.hpp>
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

namespace zarn::logging {
namespace {

std::string Put(std::string_view format, std::vector<std::string> const& arguments) {
    return Format(format, arguments);
}

TEST(Format, InsertsArgumentsByNumber) { EXPECT_EQ(Put("%0% and %1%", {"a", "b"}), "a and b"); }

TEST(Format, AcceptsPlaceholdersInAnyOrderAndRepeated) { EXPECT_EQ(Put("%1%%0%%1%", {"a", "b"}), "bab"); }

TEST(Format, AcceptsNumbersOfSeveralDigits) {
    std::vector<std::string> const arguments(11, "x");
    EXPECT_EQ(Put("<%10%>", arguments), "<x>");
}

TEST(Format, KeepsAPlaceholderWithoutAnArgument) {
    EXPECT_EQ(Put("%1% %0%", {"a"}), "%1% a");
    EXPECT_EQ(Put("%0%", {}), "%0%");
    EXPECT_EQ(Put("%99999999999999999999999%", {"a"}), "%99999999999999999999999%");
}

TEST(Format, KeepsOtherPercentSigns) {
    EXPECT_EQ(Put("100% of %0%", {"a"}), "100% of a");
    EXPECT_EQ(Put("%%0%%", {"a"}), "%a%");
    EXPECT_EQ(Put("%", {"a"}), "%");
    EXPECT_EQ(Put("%0", {"a"}), "%0");
    EXPECT_EQ(Put("%-1% %+0% % 0% %0x0%", {"a"}), "%-1% %+0% % 0% %0x0%");
}

TEST(Format, DoesNotExpandPlaceholdersInArguments) { EXPECT_EQ(Put("%0%%1%", {"%1%", "b"}), "%1%b"); }

TEST(Format, OfAnEmptyTextIsEmpty) { EXPECT_EQ(Put("", {"a"}), ""); }

TEST(ToText, KeepsStrings) {
    EXPECT_EQ(ToText(std::string("a\0b", 3)), std::string("a\0b", 3));
    EXPECT_EQ(ToText(std::string_view("view")), "view");
    EXPECT_EQ(ToText("literal"), "literal");
    char const* const pointer = "pointer";
    EXPECT_EQ(ToText(pointer), "pointer");
}

TEST(ToText, WritesNullForANullPointer) {
    EXPECT_EQ(ToText(static_cast<char const*>(nullptr)), "(null)");
    EXPECT_EQ(ToText(static_cast<char*>(nullptr)), "(null)");
}

TEST(ToText, WritesNumbersInDecimal) {
    EXPECT_EQ(ToText(-7), "-7");
    EXPECT_EQ(ToText(std::uint8_t{65}), "65");
    EXPECT_EQ(ToText(std::uint64_t{18446744073709551615U}), "18446744073709551615");
    EXPECT_EQ(ToText(2.5), "2.5");
    EXPECT_EQ(ToText('c'), "c");
    EXPECT_EQ(ToText(true), "true");
    EXPECT_EQ(ToText(false), "false");
}

TEST(ToText, StreamsEverythingElse) { EXPECT_EQ(ToText(boost::asio::ip::address_v4::loopback()), "127.0.0.1"); }

TEST(ToLine, KeepsPrintableText) {
    EXPECT_EQ(ToLine("plain ~ \xc3\xbc \xe2\x82\xac \xf0\x9f\x8e\xa5", 100),
              "plain ~ \xc3\xbc \xe2\x82\xac \xf0\x9f\x8e\xa5");
}

TEST(ToLine, EscapesControlCharacters) {
    EXPECT_EQ(ToLine("a\r\nb\tc\x1b[2Jd\x7f", 100), "a\\r\\nb\\tc\\x1b[2Jd\\x7f");
    EXPECT_EQ(ToLine(std::string_view("\0", 1), 100), "\\x00");
    EXPECT_EQ(ToLine("\xc2\x9b", 100), "\\xc2\\x9b");
}

TEST(ToLine, EscapesInvalidUtf8) {
    EXPECT_EQ(ToLine("\xff", 100), "\\xff");
    EXPECT_EQ(ToLine("\x9b", 100), "\\x9b");
    EXPECT_EQ(ToLine("Gr\xfcn", 100), "Gr\\xfcn");
    EXPECT_EQ(ToLine("\xe2\x82", 100), "\\xe2\\x82");          // cut short
    EXPECT_EQ(ToLine("\xc0\x8a", 100), "\\xc0\\x8a");          // a line feed in two bytes
    EXPECT_EQ(ToLine("\xed\xa0\x80", 100), "\\xed\\xa0\\x80"); // a surrogate
    EXPECT_EQ(ToLine("\xe0\x80\x8a", 100), "\\xe0\\x80\\x8a"); // a line feed in three bytes
    EXPECT_EQ(ToLine("\xf4\x90\x80\x80", 100), "\\xf4\\x90\\x80\\x80");
}

TEST(ToLine, CutsAtTheLimitAndSaysSo) {
    EXPECT_EQ(ToLine("12345", 5), "12345");
    EXPECT_EQ(ToLine("123456", 5), "12345... (1 bytes more)");
    EXPECT_EQ(ToLine("1234\n\n", 5), "1234... (2 bytes more)");
}

TEST(ToLine, CutsBetweenCharacters) { EXPECT_EQ(ToLine("1234\xc3\xbc", 5), "1234... (2 bytes more)"); }

} // namespace
} // namespace zarn::logging
