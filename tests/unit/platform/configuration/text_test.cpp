#include "unit/platform/configuration/tree.h"

namespace zarn::configuration::text {
namespace {

std::string ParseError(std::string const& text) {
    return ErrorOf([&] { Parse(text); });
}

TEST(ConfigurationText, IsIndentedInTheOrderOfTheMembers) {
    EXPECT_EQ(Format({{"b", {{"x", 1}, {"list", {true, nullptr, "t"}}}}, {"a", boost::json::object()}}),
              "{\n"
              "  \"b\": {\n"
              "    \"x\": 1,\n"
              "    \"list\": [\n"
              "      true,\n"
              "      null,\n"
              "      \"t\"\n"
              "    ]\n"
              "  },\n"
              "  \"a\": {}\n"
              "}\n");
}

TEST(ConfigurationText, ParsesBackToTheFormattedValue) {
    boost::json::value const json = {{"text", "Grün \"quoted\" / \\ \n \x01"},
                                     {"numbers", {0, -1, 18446744073709551615U, 1.5, 15.0, 1e300, 1e-7, 0.1}},
                                     {"empty", boost::json::array()}};
    EXPECT_EQ(Parse(Format(json)), json);
}

TEST(ConfigurationText, IgnoresSurroundingWhiteSpace) { EXPECT_EQ(Parse(" \r\n\t{}\n\n"), boost::json::object()); }

TEST(ConfigurationText, NamesLineAndColumnOfAnError) {
    EXPECT_THAT(ParseError("{\n  \"a\": 1,\n  oops\n}"), testing::StartsWith("line 3, column 3: "));
    EXPECT_THAT(ParseError(""), testing::StartsWith("line 1, column 1: "));
    EXPECT_THAT(ParseError("{\"a\": 1"), testing::StartsWith("line 1, column 8: "));
    EXPECT_THAT(ParseError("{} x"), testing::StartsWith("line 1, column "));
    EXPECT_THAT(ParseError("{\"a\": \"\xff\"}"), testing::StartsWith("line 1, column "));
}

TEST(ConfigurationText, RefusesAKeyThatOccursTwice) {
    EXPECT_EQ(ParseError("{\"channels\": {\n\"1\": {\"n\": 1},\n\"1\": {}}}"),
              "channels.1: line 3, column 3: the key occurs twice");
    EXPECT_THAT(ParseError(R"({"a": [{"b": 1, "\u0062": 2}]})"), testing::StartsWith("a.b: "));
    EXPECT_THAT(ParseError("{\"a\\n\": 1, \"a\\n\": 2}"), testing::StartsWith("\"a\\n\": "));
    EXPECT_NO_THROW(Parse(R"({"a": {"b": 1}, "b": {"b": [{"a": 1}, {"a": 1}]}})"));
}

TEST(ConfigurationText, RefusesTextThatIsTooDeepOrTooLong) {
    EXPECT_NE(ParseError(std::string(100000, '[')), "");
    EXPECT_NE(ParseError(std::string(40, '[') + std::string(40, ']')), "");
    EXPECT_EQ(ParseError(std::string(16 * 1024 * 1024 + 1, ' ')), "the text is longer than 16 MiB");
}

} // namespace
} // namespace zarn::configuration::text
