#include <zarn/json/parse.h>

#include <boost/json/parse.hpp>
#include <boost/json/value.hpp>
#include <gmock/gmock.h>

namespace zarn::json {
namespace {

using Reason = ParseError::Reason;
using testing::Eq;
using testing::Optional;
using testing::SizeIs;

/// The error for a refused text.
ParseError GetError(std::string_view text, Bounds const& bounds = {}) {
    try {
        Parse(text, bounds);
    } catch (ParseError const& error) {
        return error;
    }
    ADD_FAILURE() << text << " was accepted";
    return {Reason::Syntax, "", "", {}};
}

TEST(JsonParse, GivesWhatTheLibraryGives) {
    for (auto const* text :
         {R"({"a": [1, -1, 18446744073709551615, 1.5, true, false, null, "Gr\u00fcn \"q\" \n", {}]})", " [] ",
          "\"text\"", "0"}) {
        EXPECT_EQ(Parse(text), boost::json::parse(text)) << text;
    }
}

TEST(JsonParse, NamesThePositionOfASyntaxError) {
    auto const error = GetError("{\n  \"a\": x}");
    EXPECT_EQ(error.GetReason(), Reason::Syntax);
    EXPECT_EQ(error.GetPosition(), "line 2, column 8");
    EXPECT_STREQ(error.what(), "syntax error");
    EXPECT_EQ(GetError("1 2").GetReason(), Reason::Syntax);
    EXPECT_EQ(GetError("[\"\xff\"]").GetReason(), Reason::Syntax);
    EXPECT_EQ(GetError("").GetReason(), Reason::Syntax);
}

TEST(JsonParse, RefusesAKeyThatOccursTwiceInAnObject) {
    auto const error = GetError(R"({"a": [0, {"b": 1, "\u0062": 2}]})");
    EXPECT_EQ(error.GetReason(), Reason::DuplicateKey);
    EXPECT_EQ(error.GetPosition(), "line 1, column 27");
    ASSERT_THAT(error.GetPath(), SizeIs(3));
    EXPECT_THAT(error.GetPath()[0].key, Optional(std::string("a")));
    EXPECT_TRUE(error.GetPath()[1].isList);
    EXPECT_EQ(error.GetPath()[1].elements, 2U);
    EXPECT_THAT(error.GetPath()[2].key, Optional(std::string("b")));
    EXPECT_NO_THROW(Parse(R"({"a": {"b": 1}, "b": [{"a": 1}, {"a": 1}]})"));
}

TEST(JsonParse, RefusesMoreFieldsThanItsBound) {
    Bounds const bounds{.fields = 2};
    EXPECT_NO_THROW(Parse(R"([{"a": 1, "b": 2}, {"c": 1}])", bounds));
    EXPECT_EQ(GetError(R"({"a": 1, "b": 2, "c": 3})", bounds).GetReason(), Reason::TooManyFields);
}

TEST(JsonParse, RefusesMoreElementsThanItsBoundWhateverTheyAre) {
    Bounds const bounds{.elements = 2};
    EXPECT_NO_THROW(Parse("[[1, 2], [1]]", bounds));
    for (std::string const element : {"1", "-1", "18446744073709551615", "1.5", "true", "null", "\"a\"", "[]", "{}"}) {
        EXPECT_EQ(GetError("[0, 0, " + element + "]", bounds).GetReason(), Reason::TooManyElements) << element;
    }
}

TEST(JsonParse, RefusesMoreLevelsThanItsBound) {
    EXPECT_NO_THROW(Parse("[[]]", {.levels = 2}));
    auto const error = GetError("[0, [[]]]", {.levels = 2});
    EXPECT_EQ(error.GetReason(), Reason::TooManyLevels);
    EXPECT_THAT(error.GetPath(), SizeIs(2));
    EXPECT_EQ(GetError(std::string(100000, '[')).GetReason(), Reason::TooManyLevels);
}

TEST(JsonParse, KnowsNoKeyBeforeTheFirstOne) {
    auto const error = GetError("{\"a\": {x}}");
    ASSERT_THAT(error.GetPath(), SizeIs(2));
    EXPECT_THAT(error.GetPath()[1].key, Eq(std::nullopt));
}

} // namespace
} // namespace zarn::json
