#include "odd_root.h"

#include <service/onvif/media_common.h>
#include <service/onvif/soap_context.h>
#include <zarn/configuration/schema.h>

#include <boost/json/parse.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <future>

namespace zarn::service::onvif {
namespace {

using configuration::Schema;
using meta::data::VideoInfo;
using testing::AllOf;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pointee;
using testing::Property;
using testing::SizeIs;
using testing::StartsWith;
using testing::Throws;

class PopulatePerChannelTest : public testing::Test {
protected:
    PopulatePerChannelTest() {
        root->Schema({Schema::Collection("channels", {Schema("name", "", "name")}, "channels")});
        root->FromJson(boost::json::parse(
            R"({"channels": {"1": {"name": "Gate"}, "11": {"name": "Yard"}, "a-b": {"name": "Roof"}}})"));
    }

    /// Populates a text with "token name width" for each channel.
    void Populate(std::string const& selected = "") {
        auto const make = [](struct soap* owner, auto const& token, auto const& name, VideoInfo const& info) {
            auto* const text = soap_new_std__string(owner);
            *text = token + " " + name + " " + std::to_string(info.GetResolution().first);
            return text;
        };
        PopulatePerChannel(soap, out, make, channelInfo, root, selected);
    }

    /// Expects that populating throws a BadCast with this type name and a message that names the invalid node.
    void ExpectBadCast(char const* typeName, char const* path) {
        EXPECT_THAT(
            [this] { Populate(); },
            Throws<object::BadCast>(AllOf(Property(&object::BadCast::GetTypeName, typeName),
                                          Property(&object::BadCast::what, StartsWith(std::string(path) + " is ")))));
    }

    /// True if another thread can take the configuration's lock within this time.
    bool IsLockFree(std::chrono::milliseconds patience) {
        attempts.push_back(std::async(std::launch::async, [this] { return (void)root->GetLock(); }));
        return attempts.back().wait_for(patience) == std::future_status::ready;
    }

    std::shared_ptr<struct soap> context = MakeSoapContext();
    struct soap* const soap = context.get();
    std::shared_ptr<configuration::node::Root> root = std::make_shared<configuration::node::Root>();
    ChannelInfo channelInfo = [this](std::string const& id) {
        asked.push_back(id);
        return VideoInfo({100 + static_cast<std::uint32_t>(asked.size()), 0}, "", 0, 1);
    };
    std::vector<std::string*> out;
    std::vector<std::string> asked;
    std::vector<std::future<void>> attempts; ///< joins the threads on destruction
};

TEST_F(PopulatePerChannelTest, MakesOneObjectPerChannelInMapOrder) {
    Populate();
    EXPECT_THAT(out,
                ElementsAre(Pointee(std::string("channels.1 Gate 101")), Pointee(std::string("channels.11 Yard 102")),
                            Pointee(std::string("channels.a-b Roof 103"))));
    EXPECT_THAT(asked, ElementsAre("1", "11", "a-b"));
}

TEST_F(PopulatePerChannelTest, AppendsToExistingElements) {
    std::string present;
    out.push_back(&present);
    Populate();
    EXPECT_THAT(out, SizeIs(4));
    EXPECT_EQ(out.front(), &present);
}

TEST_F(PopulatePerChannelTest, SelectsOnlyTheChannelWithThatToken) {
    Populate("channels.1");
    EXPECT_THAT(out, ElementsAre(Pointee(std::string("channels.1 Gate 101"))));
    EXPECT_THAT(asked, ElementsAre("1"));
}

TEST_F(PopulatePerChannelTest, SelectsNothingForAnUnknownToken) {
    for (auto const* token : {"1", "channels", "channels.", "channels.2", "Channels.1", "channels.1.", " "})
        Populate(token);
    EXPECT_THAT(out, IsEmpty());
    EXPECT_THAT(asked, IsEmpty());
}

TEST_F(PopulatePerChannelTest, OmitsObjectsThatCannotBeMade) {
    auto const make = [](struct soap*, auto const&, auto const&, auto const&) -> std::string* { return nullptr; };
    PopulatePerChannel(soap, out, make, channelInfo, root, "");
    EXPECT_THAT(out, IsEmpty());
}

TEST_F(PopulatePerChannelTest, MakesNothingWithoutChannels) {
    root->FromJson(boost::json::parse("{}"));
    Populate();
    EXPECT_THAT(out, IsEmpty());
}

TEST_F(PopulatePerChannelTest, HoldsTheLockOnlyDuringTheCallback) {
    channelInfo = [this](std::string const&) {
        EXPECT_FALSE(IsLockFree(std::chrono::milliseconds(20)));
        return VideoInfo();
    };
    Populate("channels.1");
    EXPECT_TRUE(IsLockFree(std::chrono::seconds(30)));
    EXPECT_THAT(attempts, SizeIs(2));
}

TEST_F(PopulatePerChannelTest, ReleasesTheLockWhenTheCallbackThrows) {
    channelInfo = nullptr;
    EXPECT_THROW(Populate(), std::bad_function_call);
    EXPECT_TRUE(IsLockFree(std::chrono::seconds(30)));
}

TEST_F(PopulatePerChannelTest, ThrowsBadCastWhenTheChannelsAreNotACollection) {
    root = std::make_shared<configuration::node::Root>();
    ExpectBadCast("unknown", "channels");
    root->Schema({Schema("channels.1.name", "Gate", "a map")});
    ExpectBadCast("unknown", "channels");
    root = std::make_shared<configuration::node::Root>();
    root->Schema({Schema("channels", 2U, "a number")});
    ExpectBadCast("unknown", "channels");
    EXPECT_THAT(asked, IsEmpty());
}

TEST_F(PopulatePerChannelTest, ThrowsBadCastWhenAnEntryIsNotAMap) {
    root = std::make_shared<test::OddRoot>();
    ExpectBadCast("zarn.configuration.node.Map", "channels.1");
    EXPECT_THAT(asked, IsEmpty());
}

TEST_F(PopulatePerChannelTest, IgnoresAnInvalidEntryWhenAnotherIsRequested) {
    root = std::make_shared<test::OddRoot>();
    EXPECT_NO_THROW(Populate("channels.2"));
    EXPECT_THAT(out, IsEmpty());
}

TEST_F(PopulatePerChannelTest, ThrowsBadCastWhenANameIsNotAString) {
    for (auto const& entry : {Schema("name", 7U, "a number"), Schema("name.first", "Gate", "a map")}) {
        root = std::make_shared<configuration::node::Root>();
        root->Schema({Schema::Collection("channels", {entry}, "channels")});
        root->FromJson(boost::json::parse(R"({"channels": {"1": {}}})"));
        ExpectBadCast("zarn.configuration.node.String", "channels.1.name");
    }
    EXPECT_THAT(asked, IsEmpty());
}

TEST_F(PopulatePerChannelTest, CallsAChannelWithoutANameByItsId) {
    root = std::make_shared<configuration::node::Root>();
    root->Schema({Schema::Collection("channels", {Schema("title", "Gate", "another name")}, "channels")});
    root->FromJson(boost::json::parse(R"({"channels": {"7": {}, "gate-2": {}}})"));
    Populate();
    EXPECT_THAT(
        out, ElementsAre(Pointee(std::string("channels.7 7 101")), Pointee(std::string("channels.gate-2 gate-2 102"))));
}

TEST_F(PopulatePerChannelTest, ThrowsBadFunctionCallWithoutAVideoInfoCallback) {
    channelInfo = nullptr;
    EXPECT_THROW(Populate(), std::bad_function_call);
}

} // namespace
} // namespace zarn::service::onvif
