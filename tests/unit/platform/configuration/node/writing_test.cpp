#include "unit/platform/configuration/tree.h"

namespace zarn::configuration {
namespace {

class WritingTest : public Tree {
protected:
    std::string ReadAndWrite(std::string const& json) {
        Read(json);
        return Write(*root);
    }
};

TEST_F(WritingTest, AddsMissingRequiredMembers) {
    EXPECT_EQ(ReadAndWrite(R"({"channels": {"1": {}}})"),
              R"({"channels":{"1":{"name":""}},"name":"server","settings":{"enabled":false,"port":80,"secret":""}})");
}

TEST_F(WritingTest, KeepsTheOrderThatWasRead) {
    std::string const json = R"({"channels":{"2":{"video":{"width":5},"name":"b"},"1":{"user":"u","name":"a"}},)"
                             R"("settings":{"secret":"","port":1,"enabled":true},"name":"n"})";
    EXPECT_EQ(ReadAndWrite(json), json);
}

TEST_F(WritingTest, KeepsOptionalMembersThatWereReadWithTheirDefault) {
    auto const channels =
        R"({"1":{"name":"a"},"2":{"name":"b","user":"","video":{"width":0}},"3":{"name":"","video":{}}})";
    Read(std::string(R"({"channels": )") + channels + "}");
    EXPECT_EQ(Write(Channels()), channels);
}

TEST_F(WritingTest, OmitsOptionalMembersWithTheirDefault) {
    auto const entry = Channels().Add("1");
    auto& user = At<String>("channels.1.user");
    EXPECT_EQ(Write(*entry), R"({"name":""})");
    user.Set("u");
    EXPECT_EQ(Write(*entry), R"({"name":"","user":"u"})");
}

TEST_F(WritingTest, KeepsOptionalMembersThatTheProgramSetToTheirDefault) {
    auto const entry = Channels().Add("1");
    At<String>("channels.1.user").Set("");
    EXPECT_EQ(Write(*entry), R"({"name":"","user":""})");
}

TEST_F(WritingTest, OmitsAnOptionalMemberRemovedFromTheFile) {
    Read(R"({"channels": {"1": {"user": ""}}})");
    Read(R"({"channels": {"1": {}}})");
    EXPECT_EQ(Write(Channels()), R"({"1":{"name":""}})");
}

TEST_F(WritingTest, KnowsWhichMembersAreStated) {
    Read(R"({"channels": {"1": {"video": {}}, "2": {"name": "b"}}, "settings": {"port": 80}})");
    EXPECT_TRUE(root->Find("channels.1.video")->IsStated());
    EXPECT_FALSE(root->Find("channels.1.video.width")->IsStated());
    EXPECT_FALSE(root->Find("channels.2.video")->IsStated());
    EXPECT_TRUE(root->Find("settings.port")->IsStated());
    EXPECT_FALSE(root->Find("settings.enabled")->IsStated());
    At<UInt32>("channels.2.video.width").Set(640);
    EXPECT_TRUE(root->Find("channels.2.video")->IsStated());
}

TEST_F(WritingTest, PersistsWriteOnlyValuesAndNoReadOnlyOnes) {
    Read(R"({"settings": {"secret": "s"}})");
    EXPECT_EQ(Write(At<node::Map>("settings")), R"({"secret":"s","enabled":false,"port":80})");
}

TEST_F(WritingTest, ShowsReadOnlyValuesAndNoWriteOnlyOnes) {
    At<String>("settings.secret").Set("s");
    EXPECT_EQ(Write(At<node::Map>("settings"), Layer::Effective), R"({"enabled":false,"port":80,"state":"idle"})");
}

TEST_F(WritingTest, WritesTheDefaultsRegardlessOfTheValues) {
    Read(R"({"name": "x", "settings": {"enabled": true}, "channels": {"1": {}}})");
    Channels().Remove("1");
    EXPECT_EQ(Write(*root, Layer::Default),
              R"({"name":"server","settings":{"enabled":false,"port":80,"state":"idle"},"channels":{}})");
}

TEST_F(WritingTest, OmitsAnEmptyOptionalCollection) {
    root->Schema({Schema::Collection("zones", {}, "", schema::Option::Optional)});
    EXPECT_EQ(root->ToJson(Layer::Persisted).as_object().contains("zones"), false);
    At<node::Dynamic>("zones").Add("a");
    EXPECT_EQ(Write(At<node::Map>("zones")), R"({"a":{}})");
    EXPECT_EQ(root->ToJson(Layer::Persisted).as_object().contains("zones"), true);
}

} // namespace
} // namespace zarn::configuration
