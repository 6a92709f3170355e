#include "unit/platform/configuration/tree.h"

namespace zarn::configuration {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ReadingTest : public Tree {
protected:
    ReadingTest() {
        binding = root->Bind([this](auto const& event) { heard.push_back(event->GetNode()->GetPath()); });
    }

    std::vector<std::string> heard;
    type::Binding binding;
};

TEST_F(ReadingTest, SetsTheValues) {
    Read(R"({"name": "Grün", "settings": {"enabled": true, "port": 8080, "secret": "s"}})");
    EXPECT_EQ(At<String>("name").Get(), "Grün");
    EXPECT_TRUE(At<Bool>("settings.enabled").Get());
    EXPECT_EQ(At<UInt16>("settings.port").Get(), 8080);
    EXPECT_EQ(At<String>("settings.secret").Get(), "s");
}

TEST_F(ReadingTest, ResetsMissingValuesToTheirDefaults) {
    At<UInt16>("settings.port").Set(81);
    At<String>("name").Set("other");
    heard.clear();
    Read(R"({"settings": {"enabled": false}})");
    EXPECT_EQ(At<UInt16>("settings.port").Get(), 80);
    EXPECT_EQ(At<String>("name").Get(), "server");
    EXPECT_THAT(heard, ElementsAre("settings.port", "name"));
    At<UInt16>("settings.port").Set(81);
    Read("{}");
    EXPECT_EQ(At<UInt16>("settings.port").Get(), 80);
}

TEST_F(ReadingTest, ReportsOnlyChangedValues) {
    Read(R"({"name": "server", "settings": {"enabled": true, "port": 80}})");
    EXPECT_THAT(heard, ElementsAre("settings.enabled"));
}

TEST_F(ReadingTest, ReportsAfterAllValuesAreSet) {
    std::vector<int> ports;
    auto const second =
        At<Bool>("settings.enabled").Bind([&](auto const&) { ports.push_back(At<UInt16>("settings.port").Get()); });
    Read(R"({"settings": {"enabled": true, "port": 8080}, "channels": {"1": {}}})");
    EXPECT_THAT(ports, ElementsAre(8080));
}

TEST_F(ReadingTest, ChangesNothingWhenOneValueIsWrong) {
    Channels().Add("1");
    heard.clear();
    EXPECT_EQ(
        ErrorOf([&] { Read(R"({"name": "x", "channels": {"2": {}}, "settings": {"enabled": true, "port": 70000}})"); }),
        "settings.port: 70000 is not a port (1 to 65535)");
    EXPECT_EQ(At<String>("name").Get(), "server");
    EXPECT_FALSE(At<Bool>("settings.enabled").Get());
    EXPECT_THAT(Keys(Channels()), ElementsAre("1"));
    EXPECT_THAT(Keys(*root), ElementsAre("name", "settings", "channels"));
    EXPECT_THAT(heard, IsEmpty());
}

TEST_F(ReadingTest, RefusesUnknownKeysByTheirPath) {
    EXPECT_EQ(ErrorOf([&] { Read(R"({"settings": {"prot": 1}})"); }), "settings.prot: unknown key");
    EXPECT_EQ(ErrorOf([&] { Read(R"({"extra": {}})"); }), "extra: unknown key");
    EXPECT_EQ(ErrorOf([&] { Read(R"({"a.b": {}})"); }), "\"a.b\" is not a key (1 to 64 letters, digits, '-' and '_')");
}

TEST_F(ReadingTest, RefusesWhatIsNotAnObject) {
    EXPECT_EQ(ErrorOf([&] { Read("[1]"); }), "[1] is not an object");
    EXPECT_EQ(ErrorOf([&] { Read(R"({"settings": true})"); }), "settings: true is not an object");
    EXPECT_EQ(ErrorOf([&] { Read(R"({"settings": null})"); }), "settings: null is not an object");
    EXPECT_EQ(ErrorOf([&] { Read(R"({"settings": {"port": {}}})"); }), "settings.port: {} is not a port (1 to 65535)");
}

TEST_F(ReadingTest, DoesNotChangeReadOnlyValues) {
    At<String>("settings.state").Set("busy");
    Read("{}");
    EXPECT_EQ(At<String>("settings.state").Get(), "busy");
    EXPECT_NO_THROW(Read(R"({"settings": {"state": "busy"}})"));
    EXPECT_EQ(ErrorOf([&] { Read(R"({"settings": {"state": "idle"}})"); }),
              "settings.state: the configuration value is read only");
}

TEST_F(ReadingTest, ReadsOnePartOfTheTree) {
    Channels().Add("1")->FromJson({{"name", "Gate"}});
    EXPECT_EQ(At<String>("channels.1.name").Get(), "Gate");
    EXPECT_EQ(ErrorOf([&] { At<node::Map>("channels.1").FromJson({{"x", 1}}); }), "channels.1.x: unknown key");
}

TEST_F(ReadingTest, ReadsItsOwnOutput) {
    Read(
        R"({"name": "n", "channels": {"b": {"user": "u"}, "a": {"video": {"width": 3}}}, "settings": {"secret": "s"}})");
    auto const written = root->ToJson(Layer::Persisted);
    auto const copy = std::make_shared<node::Root>();
    copy->Schema(Describe());
    copy->FromJson(written);
    EXPECT_EQ(Write(*copy), boost::json::serialize(written));
}

} // namespace
} // namespace zarn::configuration
