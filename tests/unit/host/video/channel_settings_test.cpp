#include "host/video/channel_settings.h"

#include <zarn/configuration/error.h>
#include <zarn/configuration/node.h>
#include <zarn/configuration/node/dynamic.h>
#include <zarn/configuration/node/primitive.h>

#include <boost/json/parse.hpp>
#include <boost/json/serialize.hpp>
#include <gmock/gmock.h>

#include <memory>
#include <string>

namespace zarn::host::video {
namespace {

using configuration::Error;
using configuration::Layer;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class ChannelSettingsTest : public testing::Test {
protected:
    ChannelSettingsTest() { root->Schema(MakeChannelSchemas()); }

    void Read(std::string const& channels) { root->FromJson(boost::json::parse(R"({"channels": )" + channels + "}")); }

    configuration::node::Dynamic& GetChannels() const {
        return root->Find("channels")->As<configuration::node::Dynamic>();
    }

    /// The error message of a call; empty on success.
    template <class Call>
    static std::string GetError(Call const& call) {
        try {
            call();
            return "";
        } catch (Error const& error) {
            return error.what();
        }
    }

    std::shared_ptr<configuration::node::Root> root = std::make_shared<configuration::node::Root>();
};

TEST_F(ChannelSettingsTest, AreNoneByDefault) { EXPECT_THAT(ReadChannels(*root), IsEmpty()); }

TEST_F(ChannelSettingsTest, KeepTheOrderOfTheFile) {
    Read(R"({"b-2": {"name": "B", "source": "rtsp://camera/stream", "user": "u", "password": "p"},
        "1": {"name": "A", "video": {"codec": "odd", "width": 1920, "height": 1080, "rate": "30000/1001"}}})");
    EXPECT_THAT(
        ReadChannels(*root),
        ElementsAre(
            ChannelSettings{
                .id = "b-2", .source = "rtsp://camera/stream", .user = "u", .password = "p", .described = {}},
            ChannelSettings{
                .id = "1", .source = "", .user = "", .password = "", .described = {{1920, 1080}, "odd", 30000, 1001}}));
}

TEST_F(ChannelSettingsTest, StayOutOfTheFileWhereTheyAreNotStated) {
    Read(R"({"1": {"name": "A"}})");
    EXPECT_EQ(boost::json::serialize(root->Find("channels")->ToJson(Layer::Persisted)), R"({"1":{"name":"A"}})");
}

TEST_F(ChannelSettingsTest, KeepAnEmptyNameOfFileAndProgramAlike) {
    Read(R"({"1": {"name": ""}, "2": {}})");
    EXPECT_TRUE(root->Find("channels.1.name")->IsStated());
    EXPECT_FALSE(root->Find("channels.2.name")->IsStated());
    EXPECT_EQ(boost::json::serialize(root->Find("channels")->ToJson(Layer::Persisted)), R"({"1":{"name":""},"2":{}})");
}

TEST_F(ChannelSettingsTest, PersistAPasswordButNeverShowIt) {
    Read(R"({"1": {"name": "A", "password": "sesame"}})");
    EXPECT_THAT(boost::json::serialize(root->ToJson(Layer::Persisted)), HasSubstr("sesame"));
    EXPECT_THAT(boost::json::serialize(root->ToJson(Layer::Effective)), testing::Not(HasSubstr("sesame")));
}

TEST_F(ChannelSettingsTest, RefuseANameLongerThanClientsAccept) {
    std::string const umlauts = [] {
        std::string text;
        for (int i = 0; i < 64; ++i) text += "ü";
        return text;
    }();
    std::string const expected =
        "channels.1.name: \"" + std::string(65, 'n') +
        "\" is not a line of at most 64 characters of UTF-8 without those that XML cannot carry";
    auto const read = [this](std::string const& name) { Read(R"({"1": {"name": ")" + name + R"("}})"); };
    EXPECT_EQ(GetError([&] { read(std::string(64, 'n')); }), "");
    EXPECT_EQ(GetError([&] { read(umlauts); }), "");
    EXPECT_EQ(ReadChannels(*root).size(), 1U);
    EXPECT_EQ(GetError([&] { read(std::string(65, 'n')); }), expected);
    EXPECT_THAT(GetError([&] { read(umlauts + "n"); }), HasSubstr("at most 64 characters"));

    auto& name = root->Find("channels.1.name")->As<configuration::node::Primitive<std::string>>();
    EXPECT_EQ(GetError([&] { name.OverrideFromString(std::string(65, 'n')); }), expected); // as the command line does
    EXPECT_EQ(GetError([&] { name.Set(std::string(65, 'n')); }), expected);
    EXPECT_EQ(GetError([&] { name.OverrideFromString(umlauts); }), "");
    EXPECT_EQ(GetError([&] { name.Set(std::string(64, 'n')); }), "");
}

TEST_F(ChannelSettingsTest, RefuseAnIdWhoseTokenIsLongerThanClientsAccept) {
    std::string const longest(55, '7');
    std::string const expected = "channels: " + longest + "7 is not the ID of a channel (at most 55 characters)";
    EXPECT_EQ(GetError([&] { Read(R"({")" + longest + R"(": {}})"); }), "");
    EXPECT_EQ(GetError([&] { Read(R"({")" + longest + R"(7": {}})"); }), expected);
    EXPECT_EQ(GetError([&] { GetChannels().Add(longest + "7"); }), expected);
    EXPECT_EQ(GetError([&] { GetChannels().Add(std::string(55, '8')); }), "");
    EXPECT_EQ(("channels." + longest).size(), 64U);
}

TEST_F(ChannelSettingsTest, RefuseWhatMakesNoSense) {
    for (auto const* json :
         {R"({"1": {"name": "a\u0000b"}})", R"({"1": {"video": {"rate": "x"}}})", R"({"1": {"video": {"width": -1}}})",
          R"({"1": {"source": "test:none-such"}})", R"({"a.b": {}})", R"({"1": {"colour": "red"}})", "[]"}) {
        EXPECT_THAT(GetError([&] { Read(json); }), testing::StartsWith("channels")) << json;
    }
}

} // namespace
} // namespace zarn::host::video
