#include "unit/platform/configuration/tree.h"

#include <zarn/object/primitive.h>

#include <limits>

namespace zarn::configuration {
namespace {

class PrimitiveTest : public Tree {
protected:
    /// The error when setting a value of this type from text; empty on success.
    template <class T>
    std::string SetText(std::string const& text) {
        return ErrorOf([&] { Value<T>().SetFromString(text); });
    }

    template <class T>
    std::string SetJson(std::string const& json) {
        return ErrorOf([&] { Value<T>().SetFromJson(boost::json::parse(json)); });
    }

    template <class T>
    node::Primitive<T>& Value() {
        root->Schema({{"value", T{}, "A value"}});
        return At<node::Primitive<T>>("value");
    }
};

TEST_F(PrimitiveTest, HasItsDefaultAtFirst) {
    EXPECT_FALSE(At<Bool>("settings.enabled").Get());
    EXPECT_EQ(At<UInt16>("settings.port").Get(), 80);
    EXPECT_EQ(At<String>("name").Get(), "server");
}

TEST_F(PrimitiveTest, IsReadByItsPath) {
    EXPECT_EQ(node::Read<std::uint16_t>(*root, "settings.port"), 80);
    EXPECT_EQ(node::Read<std::string>(*root, "name"), "server");
    EXPECT_THROW(node::Read<std::string>(*root, "settings.port"), object::BadCast);
    try {
        node::Read<bool>(root->Find("settings")->As<node::Map>(), "nothing.here");
        FAIL() << "found";
    } catch (object::BadCast const& error) {
        EXPECT_NE(std::string(error.what()).find("settings.nothing.here"), std::string::npos) << error.what();
        EXPECT_NE(std::string(error.what()).find("zarn.configuration.node.Bool"), std::string::npos) << error.what();
    }
}

TEST_F(PrimitiveTest, ReturnsItsValueAsAnImmutableObject) {
    auto const before = At<node::Value>("settings.port").GetValuePtr();
    At<UInt16>("settings.port").Set(81);
    EXPECT_EQ(before->As<object::Primitive<unsigned short>>().Get(), 80);
    EXPECT_EQ(At<node::Value>("settings.port").GetValuePtr()->As<object::Primitive<unsigned short>>().Get(), 81);
}

TEST_F(PrimitiveTest, IsNamedByItsType) {
    EXPECT_STREQ(At<Bool>("settings.enabled").GetTypeName(), "zarn.configuration.node.Bool");
    EXPECT_STREQ(At<String>("name").GetTypeName(), "zarn.configuration.node.String");
    EXPECT_STREQ(At<UInt16>("settings.port").GetTypeName(), "zarn.configuration.node.UInt16");
    EXPECT_STREQ(node::Primitive<std::uint32_t>::TypeName, "zarn.configuration.node.UInt32");
    EXPECT_STREQ(node::Primitive<std::int32_t>::TypeName, "zarn.configuration.node.Int32");
    EXPECT_STREQ(node::Primitive<std::int64_t>::TypeName, "zarn.configuration.node.Int64");
    EXPECT_STREQ(node::Primitive<double>::TypeName, "zarn.configuration.node.Double");
}

TEST_F(PrimitiveTest, ReadsABooleanFromText) {
    auto& value = Value<bool>();
    value.SetFromString("true");
    EXPECT_TRUE(value.Get());
    value.SetFromString("false");
    EXPECT_FALSE(value.Get());
    EXPECT_EQ(SetText<bool>("maybe"), "value: Failed to parse the string into a boolean value: \"maybe\"");
    EXPECT_EQ(SetText<bool>("1"), "value: Failed to parse the string into a boolean value: 1");
    EXPECT_EQ(SetText<bool>(""), "value: Failed to parse the string into a boolean value: \"\"");
}

TEST_F(PrimitiveTest, ReadsABooleanFromJson) {
    EXPECT_EQ(SetJson<bool>("true"), "");
    EXPECT_TRUE(Value<bool>().Get());
    EXPECT_EQ(SetJson<bool>("\"true\""), "value: \"true\" is not true or false");
    EXPECT_EQ(SetJson<bool>("null"), "value: null is not true or false");
}

TEST_F(PrimitiveTest, ReadsAPortFromTextAndNamesTheRule) {
    auto& port = At<UInt16>("settings.port");
    port.SetFromString("65535");
    EXPECT_EQ(port.Get(), 65535);
    for (auto const* text : {"70000", "-1", "8080.5", "1e3", "99999999999999999999", "+5"}) {
        EXPECT_EQ(ErrorOf([&] { port.SetFromString(text); }),
                  "settings.port: " + std::string(text) + " is not a port (1 to 65535)");
    }
    EXPECT_EQ(ErrorOf([&] { port.SetFromString("web"); }), "settings.port: \"web\" is not a port (1 to 65535)");
    EXPECT_EQ(ErrorOf([&] { port.SetFromString(" 80"); }), "settings.port: \" 80\" is not a port (1 to 65535)");
    EXPECT_EQ(port.Get(), 65535);
}

TEST_F(PrimitiveTest, ReadsAPortFromJsonAndNamesTheRule) {
    auto& port = At<UInt16>("settings.port");
    port.SetFromJson(0);
    EXPECT_EQ(port.Get(), 0);
    for (auto const* json : {"70000", "-1", "80.5", "\"80\"", "null", "true", "[80]", "18446744073709551615"}) {
        EXPECT_EQ(ErrorOf([&] { port.SetFromJson(boost::json::parse(json)); }),
                  "settings.port: " + std::string(json) + " is not a port (1 to 65535)");
    }
}

TEST_F(PrimitiveTest, ReadsTheWholeRangeOfUInt32) {
    EXPECT_EQ(SetText<std::uint32_t>("4294967295"), "");
    EXPECT_EQ(Value<std::uint32_t>().Get(), 4294967295U);
    EXPECT_EQ(SetJson<std::uint32_t>("4294967296"), "value: 4294967296 is not a whole number from 0 to 4294967295");
}

TEST_F(PrimitiveTest, ReadsTheWholeRangeOfInt32) {
    EXPECT_EQ(SetJson<std::int32_t>("-2147483648"), "");
    EXPECT_EQ(Value<std::int32_t>().Get(), std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(SetText<std::int32_t>("2147483648"),
              "value: 2147483648 is not a whole number from -2147483648 to 2147483647");
}

TEST_F(PrimitiveTest, ReadsTheWholeRangeOfInt64) {
    EXPECT_EQ(SetText<std::int64_t>("-9223372036854775808"), "");
    EXPECT_EQ(Value<std::int64_t>().Get(), std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(SetJson<std::int64_t>("9223372036854775807"), "");
    EXPECT_EQ(SetJson<std::int64_t>("9223372036854775808"),
              "value: 9223372036854775808 is not a whole number from -9223372036854775808 to 9223372036854775807");
}

TEST_F(PrimitiveTest, ReadsFiniteNumbers) {
    EXPECT_EQ(SetText<double>("1.5"), "");
    EXPECT_EQ(Value<double>().Get(), 1.5);
    EXPECT_EQ(Value<double>().ToString(), "1.5");
    EXPECT_EQ(SetJson<double>("15"), "");
    EXPECT_EQ(Value<double>().Get(), 15.0);
    EXPECT_EQ(SetText<double>("inf"), "value: the value is not a finite number");
    EXPECT_EQ(SetText<double>("nan"), "value: the value is not a finite number");
    EXPECT_EQ(SetText<double>("1.5x"), "value: \"1.5x\" is not a finite number");
    EXPECT_EQ(ErrorOf([&] { Value<double>().Set(std::numeric_limits<double>::infinity()); }),
              "value: the value is not a finite number");
    EXPECT_EQ(Value<double>().Get(), 15.0);
}

TEST_F(PrimitiveTest, AcceptsTextInAnyLanguage) {
    EXPECT_EQ(SetText<std::string>("Grün 門"), "");
    EXPECT_EQ(Value<std::string>().Get(), "Grün 門");
    EXPECT_EQ(SetText<std::string>(""), "");
    EXPECT_EQ(SetJson<std::string>("7"), "value: 7 is not a text in UTF-8");
}

TEST_F(PrimitiveTest, RefusesTextThatIsNotUtf8) {
    EXPECT_EQ(SetText<std::string>("Gr\xfcn"), "value: the value is not a text in UTF-8");
    EXPECT_EQ(ErrorOf([&] { Value<std::string>().Set("\xc3"); }), "value: the value is not a text in UTF-8");
    EXPECT_EQ(ErrorOf([&] { At<Bool>("settings.enabled").SetFromString("\xff"); }),
              "settings.enabled: Failed to parse the string into a boolean value: a text that is not UTF-8");
}

TEST_F(PrimitiveTest, TruncatesALongValueInErrors) {
    std::string message = ErrorOf([&] { At<UInt16>("settings.port").SetFromString(std::string(100000, 'x')); });
    EXPECT_EQ(message, "settings.port: \"" + std::string(79, 'x') + "... is not a port (1 to 65535)");
    message = ErrorOf([&] { At<UInt16>("settings.port").SetFromString(std::string(79, 'x') + "ü"); });
    EXPECT_EQ(message, "settings.port: \"" + std::string(79, 'x') + "... is not a port (1 to 65535)");
    message = ErrorOf([&] { At<UInt16>("settings.port").SetFromString(std::string(78, 'x') + "ü"); });
    EXPECT_EQ(message, "settings.port: \"" + std::string(78, 'x') + "... is not a port (1 to 65535)");
}

TEST_F(PrimitiveTest, ChecksItsRuleForEveryWayOfSetting) {
    root->Schema({{"even", std::int32_t{0}, "", {}, {"even", [](std::int32_t number) { return number % 2 == 0; }}}});
    auto& even = At<node::Primitive<std::int32_t>>("even");
    EXPECT_EQ(ErrorOf([&] { even.Set(3); }), "even: 3 is not even");
    EXPECT_EQ(ErrorOf([&] { even.Override(5); }), "even: 5 is not even");
    EXPECT_EQ(ErrorOf([&] { even.SetFromString("7"); }), "even: 7 is not even");
    EXPECT_EQ(ErrorOf([&] { even.SetFromJson(9); }), "even: 9 is not even");
    EXPECT_EQ(ErrorOf([&] { even.OverrideFromString("11"); }), "even: 11 is not even");
    EXPECT_EQ(ErrorOf([&] { root->FromJson({{"even", 13}}); }), "even: 13 is not even");
    EXPECT_EQ(even.Get(), 0);
    even.Set(4);
    EXPECT_EQ(even.Get(), 4);
}

TEST_F(PrimitiveTest, AllowsOnlyTheProgramToSetAReadOnlyValue) {
    auto& state = At<String>("settings.state");
    EXPECT_TRUE(state.IsReadOnly());
    std::string const message = "settings.state: the configuration value is read only";
    EXPECT_EQ(ErrorOf([&] { state.SetFromString("busy"); }), message);
    EXPECT_EQ(ErrorOf([&] { state.SetFromJson("busy"); }), message);
    EXPECT_EQ(ErrorOf([&] { state.OverrideFromString("busy"); }), message);
    EXPECT_EQ(state.Get(), "idle");
    state.Set("busy");
    EXPECT_EQ(state.ToString(), "busy");
}

TEST_F(PrimitiveTest, ShowsAWriteOnlyValueToTheProgramOnly) {
    auto& secret = At<String>("settings.secret");
    secret.SetFromString("hunter2");
    EXPECT_TRUE(secret.IsWriteOnly());
    EXPECT_EQ(secret.Get(), "hunter2");
    std::string const message = "settings.secret: the configuration value is write only";
    EXPECT_EQ(ErrorOf([&] { secret.ToString(); }), message);
    EXPECT_EQ(ErrorOf([&] { secret.ToJson(Layer::Effective); }), message);
    EXPECT_EQ(ErrorOf([&] { secret.ToJson(Layer::Default); }), message);
}

TEST_F(PrimitiveTest, DoesNotQuoteAWriteOnlyValue) {
    auto& secret = At<String>("settings.secret");
    EXPECT_EQ(ErrorOf([&] { secret.SetFromString("x"); }), "settings.secret: the value is not long enough");
    EXPECT_EQ(ErrorOf([&] { secret.SetFromJson(1234); }), "settings.secret: the value is not long enough");
    root->Schema({{"secret", false, "", schema::Option::WriteOnly}});
    EXPECT_EQ(ErrorOf([&] { At<Bool>("secret").SetFromString("hunter2"); }),
              "secret: Failed to parse the string into a boolean value");
}

} // namespace
} // namespace zarn::configuration
