#include "device_fixture.h"

#include <zarn/configuration/node/dynamic.h>
#include <zarn/configuration/node/primitive.h>
#include <zarn/configuration/schema.h>

#include <boost/algorithm/string/replace.hpp>
#include <boost/json/parse.hpp>
#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <optional>
#include <stdexcept>
#include <utility>

namespace zarn::test {
namespace {

using configuration::Schema;
using configuration::node::Dynamic;
using configuration::node::Root;
using meta::data::VideoInfo;
using testing::AllOf;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

/// A device that records which channels it asks for and whether the configuration is locked meanwhile.
class Channels : public DeviceFixture {
protected:
    Channels() {
        channelInfo = [this, lookUp = channelInfo](std::string const& id) {
            asked.push_back(id);
            if (watchesLock) lockFree.push_back(IsLockFree());
            return lookUp(id);
        };
    }

    /// True if another thread can take the configuration's lock.
    bool IsLockFree() {
        attempts.push_back(std::async(std::launch::async, [this] { return (void)root->GetLock(); }));
        return attempts.back().wait_for(lockPatience) == std::future_status::ready;
    }

    /// Gives the channels this entry schema and adds one entry, "1", with default values.
    void DescribeEntries(std::vector<Schema> const& entry) {
        root = std::make_shared<Root>();
        root->Schema({Schema::Collection("channels", entry, "channels")});
        root->Find("channels")->As<Dynamic>().Add("1");
    }

    std::vector<std::string> asked;
    std::vector<bool> lockFree;
    bool watchesLock = false;
    std::chrono::milliseconds lockPatience{30};

private:
    std::vector<std::future<void>> attempts; ///< joins the threads on destruction
};

// Operations that list every channel

struct ListOperation {
    char const* name;
    char const* request;
    char const* empty;   ///< expected answer without channels
    char const* objects; ///< XPath of the channel objects
};

class EveryChannelList : public Channels, public testing::WithParamInterface<ListOperation> {
protected:
    Reply AskForList() { return AskAnonymously(GetParam().request); }

    static std::vector<std::string> Tokens(Reply const& reply) {
        return reply.Texts((std::string(GetParam().objects) + "/@token").c_str());
    }

    static std::vector<std::string> Names(Reply const& reply) {
        return reply.Texts((std::string(GetParam().objects) + "/*[local-name()='Name']").c_str());
    }
};

TEST_P(EveryChannelList, ListsTheChannelsInConfigurationOrder) {
    Configure(R"({"channels": {"10": {"name": "a"}, "2": {"name": "c"}, "b-1": {"name": "b"}, "A_0": {"name": "d"}}})");
    auto const reply = AskForList();
    EXPECT_THAT(Tokens(reply), ElementsAre("channels.10", "channels.2", "channels.b-1", "channels.A_0"));
    EXPECT_THAT(Names(reply), ElementsAre("a", "c", "b", "d"));
}

TEST_P(EveryChannelList, KeepsNothingFromOneRequestToTheNext) {
    EXPECT_THAT(Tokens(AskForList()), ElementsAre("channels.1", "channels.2"));
    auto& channels = root->Find("channels")->As<Dynamic>();
    channels.Add("3")->Find("name")->As<configuration::node::Primitive<std::string>>().Set("Roof");
    channels.Reorder({"3", "2", "1"});
    channels.Remove("2");
    auto const reply = AskForList();
    EXPECT_THAT(Tokens(reply), ElementsAre("channels.3", "channels.1"));
    EXPECT_THAT(Names(reply), ElementsAre("Roof", "Gate"));
}

TEST_P(EveryChannelList, IsCompleteWithThreeHundredChannels) {
    auto const id = [](int i) { return "c" + std::to_string(1000 + i); };
    auto const describe = [](std::string const& channel) {
        return '"' + channel + R"(": {"name": "Name of )" + channel + "\"}";
    };
    Configure(R"({"channels": {)" + describe(id(0)) + "}}");
    auto const one = AskForList().Message();
    auto const begin = one.find('>') + 1;
    auto const end = one.rfind("</");
    std::string all = describe(id(0));
    std::string expected = one.substr(0, end);
    for (int i = 1; i < 300; ++i) {
        all += ", " + describe(id(i));
        expected += boost::algorithm::replace_all_copy(one.substr(begin, end - begin), id(0), id(i));
    }
    EndManager();
    Configure(R"({"channels": {)" + all + "}}");
    auto const reply = AskForList();
    EXPECT_TRUE(reply.Message() == expected + one.substr(end)) << reply.Message().substr(0, 2000);
    EXPECT_THAT(Tokens(reply), SizeIs(300));
}

TEST_P(EveryChannelList, IsEmptyWithoutChannels) {
    Configure(R"({"channels": {}})");
    EXPECT_THAT(AskForList(), Answers(GetParam().empty));
    EXPECT_THAT(asked, IsEmpty());
}

TEST_P(EveryChannelList, PreservesNamesInAnyLanguageAndWithMarkup) {
    Configure(R"({"channels": {"1": {"name": "Tür & Tor <b>\"süß\"</b> 'x' ]]>"}, "2": {"name": "大门 🎥"},
                               "3": {"name": ""}, "4": {"name": "  two  spaces "}}})");
    EXPECT_THAT(Names(AskForList()), ElementsAre("Tür & Tor <b>\"süß\"</b> 'x' ]]>", "大门 🎥", "", "  two  spaces "));
}

TEST_P(EveryChannelList, KeepsAnEmptyNameThatTheProgramSets) {
    using Name = configuration::node::Primitive<std::string>;
    root->Find("channels.1.name")->As<Name>().Set("");
    auto& channels = root->Find("channels")->As<Dynamic>();
    channels.Add("3"); // to which nobody gives a name
    channels.Add("4")->Find("name")->As<Name>().Set("");
    EXPECT_THAT(Names(AskForList()), ElementsAre("", "Yard", "3", ""));
}

TEST_P(EveryChannelList, RequestsTheVideoInfoOfEachChannelOnce) {
    AskForList();
    EXPECT_THAT(asked, ElementsAre("1", "2"));
}

TEST_P(EveryChannelList, HoldsTheConfigurationLockDuringTheCallback) {
    watchesLock = true;
    AskForList();
    EXPECT_THAT(lockFree, ElementsAre(false, false));
    lockPatience = std::chrono::seconds(30);
    EXPECT_TRUE(IsLockFree()) << "still locked after the answer";
}

TEST_P(EveryChannelList, ThrowsWhenTheChannelsAreNotACollection) {
    root = std::make_shared<Root>();
    EXPECT_THROW(AskForList(), std::future_error) << "missing";
    root->Schema({Schema("channels.1.name", "Gate", "a map, not a collection")});
    EXPECT_THROW(AskForList(), std::future_error) << "a map";
    lockPatience = std::chrono::seconds(30);
    EXPECT_TRUE(IsLockFree()) << "still locked after the exception";
}

TEST_P(EveryChannelList, ThrowsWhenTheChannelsAreAValue) {
    root = std::make_shared<Root>();
    root->Schema({Schema("channels", "1, 2", "a text")});
    EXPECT_THROW(AskForList(), std::future_error);
}

TEST_P(EveryChannelList, ThrowsWhenANameIsNotAString) {
    DescribeEntries({Schema("name", 7, "a number")});
    EXPECT_THROW(AskForList(), std::future_error);
    EXPECT_THAT(asked, IsEmpty());
}

TEST_P(EveryChannelList, CallsAChannelWithoutANameByItsId) {
    DescribeEntries({Schema("title", "Gate", "not a name")});
    EXPECT_THAT(Names(AskForList()), ElementsAre("1")) << "the schema has no name";
    DescribeEntries({Schema("name", "", "name")});
    ReplaceManager();
    EXPECT_THAT(Names(AskForList()), ElementsAre("1")) << "the name has its default value";
    root->FromJson(boost::json::parse(R"({"channels": {"1": {"name": ""}}})"));
    EXPECT_THAT(Names(AskForList()), ElementsAre("")) << "the name is set to an empty text";
}

TEST_P(EveryChannelList, ThrowsWithoutAVideoInfoCallback) {
    channelInfo = nullptr;
    EXPECT_THROW(AskForList(), std::future_error);
}

TEST_P(EveryChannelList, ThrowsWhenTheCallbackThrowsAndServesTheNextRequest) {
    bool failed = false;
    channelInfo = [&](std::string const&) {
        if (!std::exchange(failed, true)) throw std::runtime_error("no pipeline");
        return VideoInfo();
    };
    EXPECT_THROW(AskForList(), std::future_error);
    EXPECT_THAT(Tokens(AskForList()), SizeIs(2));
}

TEST_P(EveryChannelList, ListsAThousandChannels) {
    DescribeEntries({Schema("name", "Gate", "name")}); // the default is a non-empty name
    for (int i = 2; i <= 1000; ++i) root->Find("channels")->As<Dynamic>().Add(std::to_string(i));
    auto const reply = AskForList();
    EXPECT_THAT(Names(reply), AllOf(SizeIs(1000), Each("Gate")));
    EXPECT_EQ(Tokens(reply).back(), "channels.1000");
}

INSTANTIATE_TEST_SUITE_P(
    Of, EveryChannelList,
    testing::Values(
        ListOperation{"MediaProfiles", "<trt:GetProfiles/>", "<trt:GetProfilesResponse/>", "//trt:Profiles"},
        ListOperation{"MediaVideoSourceConfigurations", "<trt:GetVideoSourceConfigurations/>",
                      "<trt:GetVideoSourceConfigurationsResponse/>", "//trt:Configurations"},
        ListOperation{"MediaVideoEncoderConfigurations", "<trt:GetVideoEncoderConfigurations/>",
                      "<trt:GetVideoEncoderConfigurationsResponse/>", "//trt:Configurations"},
        ListOperation{"Media2Profiles", "<tr2:GetProfiles/>", "<tr2:GetProfilesResponse/>", "//tr2:Profiles"},
        ListOperation{"Media2VideoSourceConfigurations", "<tr2:GetVideoSourceConfigurations/>",
                      "<tr2:GetVideoSourceConfigurationsResponse/>", "//tr2:Configurations"},
        ListOperation{"Media2VideoEncoderConfigurations", "<tr2:GetVideoEncoderConfigurations/>",
                      "<tr2:GetVideoEncoderConfigurationsResponse/>", "//tr2:Configurations"},
        ListOperation{"Media2MetadataConfigurations", "<tr2:GetMetadataConfigurations/>",
                      "<tr2:GetMetadataConfigurationsResponse/>", "//tr2:Configurations"},
        ListOperation{"Media2AnalyticsConfigurations", "<tr2:GetAnalyticsConfigurations/>",
                      "<tr2:GetAnalyticsConfigurationsResponse/>", "//tr2:Configurations"}),
    [](auto const& instance) { return instance.param.name; });

// Operations that look up one configuration node by its path

struct Lookup {
    char const* operation;
    char const* tokenElement;
    char const* object; ///< XPath of the answer's object
};

class SingleLookup : public Channels, public testing::WithParamInterface<Lookup> {
protected:
    Reply LookUp(std::string const& token) {
        auto const [operation, tokenElement, object] = GetParam();
        return AskAnonymously(std::string("<trt:") + operation + "><trt:" + tokenElement + ">" + token +
                              "</trt:" + tokenElement + "></trt:" + operation + ">");
    }

    static std::string Attribute(Reply const& reply, char const* name) {
        return reply.Text((std::string(GetParam().object) + name).c_str());
    }

    static auto IsNotFound() { return IsFault("Sender", "Profile not found", {"ter:InvalidArgVal", "ter:NoProfile"}); }
};

TEST_P(SingleLookup, FindsAChannelByItsToken) {
    auto const reply = LookUp("channels.2");
    EXPECT_EQ(reply.status, 200);
    EXPECT_EQ(Attribute(reply, "/@token"), "channels.2");
    EXPECT_EQ(Attribute(reply, "/tt:Name"), "Yard");
    EXPECT_THAT(asked, ElementsAre("2"));
}

TEST_P(SingleLookup, FaultsWithNoProfileForAnUnknownToken) {
    for (auto const* token : {"channels.3", "1", "", ".", "..", "channels.", ".channels.1", "channels..1",
                              "channels.1.", "channels.1.name.x", "Channels.1", "channels/1", "../channels.1",
                              "channels.%31", "&lt;x&gt;&amp;&quot;", "名"})
        EXPECT_THAT(LookUp(token), IsNotFound()) << token;
    EXPECT_THAT(asked, IsEmpty());
}

TEST_P(SingleLookup, FaultsWithNoProfileForAVeryLongToken) {
    EXPECT_THAT(LookUp(std::string(100'000, 'x')), IsNotFound());
    EXPECT_THAT(LookUp(std::string(100'000, '.')), IsNotFound());
}

TEST_P(SingleLookup, FaultsWithNoProfileWithoutAToken) {
    auto const operation = std::string(GetParam().operation);
    EXPECT_THAT(AskAnonymously("<trt:" + operation + "/>"), IsNotFound());
}

TEST_P(SingleLookup, FindsAnyMapWithAName) {
    root = std::make_shared<Root>();
    root->Schema({Schema("site.hall.name", "Hall", "name"), Schema("lobby.name", "Lobby", "name")});
    auto const hall = LookUp("site.hall");
    EXPECT_EQ(Attribute(hall, "/@token"), "site.hall");
    EXPECT_EQ(Attribute(hall, "/tt:Name"), "Hall");
    EXPECT_EQ(Attribute(LookUp("lobby"), "/tt:Name"), "Lobby");
    EXPECT_THAT(asked, ElementsAre("hall", "lobby"));
}

TEST_P(SingleLookup, ThrowsWhenTheNodeIsNotAMap) {
    EXPECT_THROW(LookUp("channels.1.name"), std::future_error);
    EXPECT_THROW(LookUp("settings.web_port"), std::future_error);
    EXPECT_THAT(asked, IsEmpty());
}

TEST_P(SingleLookup, ThrowsWhenTheMapHasNoName) {
    EXPECT_THROW(LookUp("settings"), std::future_error);
    EXPECT_THROW(LookUp("channels"), std::future_error);
    EXPECT_THAT(asked, IsEmpty());
}

TEST_P(SingleLookup, CallsAChannelWithoutANameByItsId) {
    DescribeEntries({Schema("title", "Gate", "another name")});
    EXPECT_EQ(Attribute(LookUp("channels.1"), "/tt:Name"), "1");
}

TEST_P(SingleLookup, ThrowsWhenTheNameIsNotAString) {
    DescribeEntries({Schema("name", true, "a boolean")});
    EXPECT_THROW(LookUp("channels.1"), std::future_error);
    EXPECT_THAT(asked, IsEmpty());
}

TEST_P(SingleLookup, ThrowsWithoutAVideoInfoCallback) {
    channelInfo = nullptr;
    EXPECT_THROW(LookUp("channels.1"), std::future_error);
    EXPECT_THAT(LookUp("channels.3"), IsNotFound());
}

TEST_P(SingleLookup, DoesNotHoldTheConfigurationLockDuringTheCallback) {
    watchesLock = true;
    lockPatience = std::chrono::seconds(30);
    LookUp("channels.1");
    EXPECT_THAT(lockFree, ElementsAre(true));
}

TEST_P(SingleLookup, AnswersWhileAnotherThreadHoldsTheConfigurationLock) {
    Manager();
    auto lock = std::make_optional(root->GetLock());
    auto reply = std::async(std::launch::async, [this] { return LookUp("channels.1"); });
    EXPECT_EQ(reply.wait_for(std::chrono::seconds(30)), std::future_status::ready);
    lock.reset();
    EXPECT_EQ(reply.get().status, 200);
}

INSTANTIATE_TEST_SUITE_P(
    Of, SingleLookup,
    testing::Values(Lookup{"GetProfile", "ProfileToken", "//trt:Profile"},
                    Lookup{"GetVideoSourceConfiguration", "ConfigurationToken", "//trt:Configuration"},
                    Lookup{"GetVideoEncoderConfiguration", "ConfigurationToken", "//trt:Configuration"}),
    [](auto const& instance) { return instance.param.operation; });

// Operations that only need a channel's description

struct OptionsOperation {
    char const* name;
    char const* request; ///< TOKEN is replaced by the token
};

class OptionsOfAToken : public Channels, public testing::WithParamInterface<OptionsOperation> {
protected:
    Reply AskFor(std::string const& token) {
        std::string request = GetParam().request;
        return AskAnonymously(request.replace(request.find("TOKEN"), 5, token));
    }
};

TEST_P(OptionsOfAToken, UseTheIdAfterTheLastDotEvenWithoutAMatchingNode) {
    for (auto const* token : {"channels.1", "1", "a.b.c", "nothing.", "../../etc", "channels.&lt;1&gt;"})
        EXPECT_EQ(AskFor(token).status, 200) << token;
    EXPECT_THAT(asked, ElementsAre("1", "1", "c", "", "/etc", "<1>"));
}

TEST_P(OptionsOfAToken, NeedNeitherTheConfigurationNorItsLock) {
    watchesLock = true;
    lockPatience = std::chrono::seconds(30);
    root = std::make_shared<Root>();
    EXPECT_EQ(AskFor("channels.1").status, 200);
    EXPECT_THAT(lockFree, ElementsAre(true));
}

TEST_P(OptionsOfAToken, ThrowWithoutAVideoInfoCallback) {
    channelInfo = nullptr;
    EXPECT_THROW(AskFor("channels.1"), std::future_error);
}

INSTANTIATE_TEST_SUITE_P(
    Of, OptionsOfAToken,
    testing::Values(
        OptionsOperation{"MediaVideoEncoder", "<trt:GetVideoEncoderConfigurationOptions><trt:ConfigurationToken>TOKEN"
                                              "</trt:ConfigurationToken></trt:GetVideoEncoderConfigurationOptions>"},
        OptionsOperation{"Media2VideoEncoder", "<tr2:GetVideoEncoderConfigurationOptions><tr2:ConfigurationToken>TOKEN"
                                               "</tr2:ConfigurationToken></tr2:GetVideoEncoderConfigurationOptions>"},
        OptionsOperation{"Media2VideoSource", "<tr2:GetVideoSourceConfigurationOptions><tr2:ProfileToken>TOKEN"
                                              "</tr2:ProfileToken></tr2:GetVideoSourceConfigurationOptions>"}),
    [](auto const& instance) { return instance.param.name; });

} // namespace
} // namespace zarn::test
