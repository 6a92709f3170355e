#include "device_fixture.h"
#include "no_multicast.h"

#include <zarn/authentication/realm.h>
#include <zarn/configuration/node/dynamic.h>
#include <zarn/configuration/schema.h>

#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <limits>

namespace zarn::test {
namespace {

using configuration::Schema;
using meta::data::VideoInfo;
using testing::ElementsAre;

constexpr auto Largest = std::numeric_limits<std::int32_t>::max();
constexpr auto Smallest = std::numeric_limits<std::int32_t>::min();

class Media : public DeviceFixture {};

TEST_F(Media, ReportsItsCapabilitiesWithoutCredentials) {
    EXPECT_THAT(AskAnonymously("<trt:GetServiceCapabilities/>"), Answers(R"(
        <trt:GetServiceCapabilitiesResponse><trt:Capabilities SnapshotUri="true">
          <trt:ProfileCapabilities MaximumNumberOfProfiles="2147483647"/>
          <trt:StreamingCapabilities RTPMulticast="false" RTP_TCP="false" RTP_RTSP_TCP="true"
                                     NonAggregateControl="false" NoRTSPStreaming="false"/>
        </trt:Capabilities></trt:GetServiceCapabilitiesResponse>)"));
}

// Profiles and configurations

constexpr char GateSource[] = R"(
    <tt:Name>Gate</tt:Name><tt:UseCount>1</tt:UseCount><tt:SourceToken>channels.1</tt:SourceToken>
    <tt:Bounds x="0" y="0" width="1920" height="1080"/>)";
constexpr char YardSource[] = R"(
    <tt:Name>Yard</tt:Name><tt:UseCount>1</tt:UseCount><tt:SourceToken>channels.2</tt:SourceToken>
    <tt:Bounds x="0" y="0" width="1280" height="720"/>)";

std::string Encoder(std::string const& name, int width, int height) {
    return "<tt:Name>" + name + "</tt:Name><tt:UseCount>1</tt:UseCount><tt:Encoding>H264</tt:Encoding>" +
           "<tt:Resolution><tt:Width>" + std::to_string(width) + "</tt:Width><tt:Height>" + std::to_string(height) +
           "</tt:Height></tt:Resolution><tt:Quality>1</tt:Quality>" + NoMulticast;
}

std::string Metadata(std::string const& name) {
    return "<tt:Name>" + name + "</tt:Name><tt:UseCount>1</tt:UseCount><tt:Analytics>true</tt:Analytics>" + NoMulticast;
}

std::string Element(std::string const& name, std::string const& token, std::string const& content) {
    return "<" + name + " token=\"" + token + "\">" + content + "</" + name + ">";
}

/// The content of a profile; all its configurations have the profile's token.
std::string ProfileContent(std::string const& token, std::string const& name, std::string const& source, int width,
                           int height) {
    return "<tt:Name>" + name + "</tt:Name>" + Element("tt:VideoSourceConfiguration", token, source) +
           Element("tt:VideoEncoderConfiguration", token, Encoder(name, width, height)) +
           Element("tt:MetadataConfiguration", token, Metadata(name));
}

std::string const GateProfile = ProfileContent("channels.1", "Gate", GateSource, 1920, 1080);
std::string const YardProfile = ProfileContent("channels.2", "Yard", YardSource, 1280, 720);

TEST_F(Media, ListsOneProfilePerChannelWithItsVideoAndMetadataConfigurations) {
    EXPECT_THAT(AskAnonymously("<trt:GetProfiles/>"),
                Answers("<trt:GetProfilesResponse>" + Element("trt:Profiles", "channels.1", GateProfile) +
                        Element("trt:Profiles", "channels.2", YardProfile) + "</trt:GetProfilesResponse>"));
}

TEST_F(Media, ReturnsASingleProfileAsListed) {
    EXPECT_THAT(AskAnonymously("<trt:GetProfile><trt:ProfileToken>channels.2</trt:ProfileToken></trt:GetProfile>"),
                Answers("<trt:GetProfileResponse>" + Element("trt:Profile", "channels.2", YardProfile) +
                        "</trt:GetProfileResponse>"));
}

TEST_F(Media, ListsOneVideoSourceConfigurationPerChannel) {
    EXPECT_THAT(AskAnonymously("<trt:GetVideoSourceConfigurations/>"),
                Answers("<trt:GetVideoSourceConfigurationsResponse>" +
                        Element("trt:Configurations", "channels.1", GateSource) +
                        Element("trt:Configurations", "channels.2", YardSource) +
                        "</trt:GetVideoSourceConfigurationsResponse>"));
}

TEST_F(Media, ReturnsASingleVideoSourceConfigurationAsListed) {
    EXPECT_THAT(AskAnonymously("<trt:GetVideoSourceConfiguration><trt:ConfigurationToken>channels.1"
                               "</trt:ConfigurationToken></trt:GetVideoSourceConfiguration>"),
                Answers("<trt:GetVideoSourceConfigurationResponse>" +
                        Element("trt:Configuration", "channels.1", GateSource) +
                        "</trt:GetVideoSourceConfigurationResponse>"));
}

TEST_F(Media, ListsOneH264EncoderConfigurationPerChannelForAnyCodec) {
    ASSERT_EQ(videos.at("2").GetCodec(), "video/x-h265");
    EXPECT_THAT(AskAnonymously("<trt:GetVideoEncoderConfigurations/>"),
                Answers("<trt:GetVideoEncoderConfigurationsResponse>" +
                        Element("trt:Configurations", "channels.1", Encoder("Gate", 1920, 1080)) +
                        Element("trt:Configurations", "channels.2", Encoder("Yard", 1280, 720)) +
                        "</trt:GetVideoEncoderConfigurationsResponse>"));
}

TEST_F(Media, ReturnsASingleVideoEncoderConfigurationAsListed) {
    EXPECT_THAT(AskAnonymously("<trt:GetVideoEncoderConfiguration><trt:ConfigurationToken>channels.2"
                               "</trt:ConfigurationToken></trt:GetVideoEncoderConfiguration>"),
                Answers("<trt:GetVideoEncoderConfigurationResponse>" +
                        Element("trt:Configuration", "channels.2", Encoder("Yard", 1280, 720)) +
                        "</trt:GetVideoEncoderConfigurationResponse>"));
}

TEST_F(Media, ReportsAnUnknownPictureSizeAsZero) {
    videos.clear();
    auto const reply = AskAnonymously("<trt:GetProfiles/>");
    EXPECT_THAT(reply.Texts("//tt:Bounds/@*"), ElementsAre("0", "0", "0", "0", "0", "0", "0", "0"));
    EXPECT_THAT(reply.Texts("//tt:Resolution/*"), ElementsAre("0", "0", "0", "0"));
}

TEST_F(Media, WrapsAPictureSizeAboveInt32) {
    videos["1"] = VideoInfo({4294967295U, 2147483648U}, "", 0, 1);
    videos["2"] = VideoInfo({2147483647U, 1U}, "", 0, 1);
    auto const reply = AskAnonymously("<trt:GetProfiles/>");
    EXPECT_THAT(reply.Texts("//tt:Bounds/@width"), ElementsAre("-1", "2147483647"));
    EXPECT_THAT(reply.Texts("//tt:Resolution/*"), ElementsAre("-1", "-2147483648", "2147483647", "1"));
}

TEST_F(Media, EscapesTheNameAndKeepsThePath) {
    Configure(R"({"channels": {"a-B_1": {"name": "<&>\"'"}}})");
    EXPECT_THAT(AskAnonymously("<trt:GetVideoSourceConfigurations/>"),
                Answers(R"(<trt:GetVideoSourceConfigurationsResponse><trt:Configurations token="channels.a-B_1">
                    <tt:Name>&lt;&amp;&gt;"'</tt:Name><tt:UseCount>1</tt:UseCount>
                    <tt:SourceToken>channels.a-B_1</tt:SourceToken>
                    <tt:Bounds x="0" y="0" width="0" height="0"/>
                </trt:Configurations></trt:GetVideoSourceConfigurationsResponse>)"));
}

// Options

TEST_F(Media, OffersQualityAndPictureSizeAsEncoderOptions) {
    EXPECT_THAT(AskAnonymously("<trt:GetVideoEncoderConfigurationOptions><trt:ConfigurationToken>channels.2"
                               "</trt:ConfigurationToken></trt:GetVideoEncoderConfigurationOptions>"),
                Answers(R"(<trt:GetVideoEncoderConfigurationOptionsResponse><trt:Options>
                    <tt:QualityRange><tt:Min>1</tt:Min><tt:Max>1</tt:Max></tt:QualityRange>
                    <tt:H264><tt:ResolutionsAvailable><tt:Width>1280</tt:Width><tt:Height>720</tt:Height>
                    </tt:ResolutionsAvailable></tt:H264>
                </trt:Options></trt:GetVideoEncoderConfigurationOptionsResponse>)"));
}

TEST_F(Media, OffersZeroResolutionForAnUnknownOrEmptyToken) {
    for (auto const* token : {"channels.99", ""}) {
        auto const reply =
            AskAnonymously(std::string("<trt:GetVideoEncoderConfigurationOptions><trt:ConfigurationToken>") + token +
                           "</trt:ConfigurationToken></trt:GetVideoEncoderConfigurationOptions>");
        EXPECT_THAT(reply.Texts("//tt:H264/tt:ResolutionsAvailable/*"), ElementsAre("0", "0")) << token;
    }
}

constexpr char QualityAlone[] = R"(
    <trt:GetVideoEncoderConfigurationOptionsResponse><trt:Options>
      <tt:QualityRange><tt:Min>1</tt:Min><tt:Max>1</tt:Max></tt:QualityRange>
    </trt:Options></trt:GetVideoEncoderConfigurationOptionsResponse>)";

TEST_F(Media, OffersOnlyTheQualityWithoutAConfigurationToken) {
    channelInfo = nullptr;
    EXPECT_THAT(AskAnonymously("<trt:GetVideoEncoderConfigurationOptions/>"), Answers(QualityAlone));
    EXPECT_THAT(AskAnonymously("<trt:GetVideoEncoderConfigurationOptions><trt:ProfileToken>channels.1"
                               "</trt:ProfileToken></trt:GetVideoEncoderConfigurationOptions>"),
                Answers(QualityAlone));
}

TEST_F(Media, UsesTheConfigurationTokenForEncoderOptions) {
    auto const reply = AskAnonymously(
        "<trt:GetVideoEncoderConfigurationOptions><trt:ConfigurationToken>channels.2</trt:ConfigurationToken>"
        "<trt:ProfileToken>channels.1</trt:ProfileToken></trt:GetVideoEncoderConfigurationOptions>");
    EXPECT_THAT(reply.Texts("//tt:ResolutionsAvailable/*"), ElementsAre("1280", "720"));
}

TEST_F(Media, OffersNoVideoSourceOptions) {
    for (auto const* content : {"", "<trt:ConfigurationToken>channels.1</trt:ConfigurationToken>",
                                "<trt:ProfileToken>nothing</trt:ProfileToken>"})
        EXPECT_THAT(AskAnonymously(std::string("<trt:GetVideoSourceConfigurationOptions>") + content +
                                   "</trt:GetVideoSourceConfigurationOptions>"),
                    Answers("<trt:GetVideoSourceConfigurationOptionsResponse/>"));
}

TEST_F(Media, AcceptsSynchronizationPointsOfAnyProfile) {
    for (auto const* content :
         {"", "<trt:ProfileToken>channels.1</trt:ProfileToken>", "<trt:ProfileToken>nothing</trt:ProfileToken>"})
        EXPECT_THAT(
            AskAnonymously(std::string("<trt:SetSynchronizationPoint>") + content + "</trt:SetSynchronizationPoint>"),
            Answers("<trt:SetSynchronizationPointResponse/>"));
}

// Video sources

class MediaVideoSources : public DeviceFixture {
protected:
    /// The frame rate reported for a source with this rate.
    std::string Rate(std::int32_t numerator, std::int32_t denominator) {
        videos["1"] = VideoInfo({1, 1}, "", numerator, denominator);
        return Ask("<trt:GetVideoSources/>").Text("//trt:VideoSources[@token='channels.1']/tt:Framerate");
    }
};

TEST_F(MediaVideoSources, AreListedOnePerChannelWithTheirRateAndSize) {
    EXPECT_THAT(Ask("<trt:GetVideoSources/>"), Answers(R"(
        <trt:GetVideoSourcesResponse>
          <trt:VideoSources token="channels.1"><tt:Framerate>15</tt:Framerate>
            <tt:Resolution><tt:Width>1920</tt:Width><tt:Height>1080</tt:Height></tt:Resolution></trt:VideoSources>
          <trt:VideoSources token="channels.2"><tt:Framerate>15</tt:Framerate>
            <tt:Resolution><tt:Width>1280</tt:Width><tt:Height>720</tt:Height></tt:Resolution></trt:VideoSources>
        </trt:GetVideoSourcesResponse>)"));
}

TEST_F(MediaVideoSources, AreEmptyWithoutChannels) {
    Configure(R"({"channels": {}})");
    EXPECT_THAT(Ask("<trt:GetVideoSources/>"), Answers("<trt:GetVideoSourcesResponse/>"));
}

TEST_F(MediaVideoSources, CapTheRateAtFifteenFramesPerSecond) {
    EXPECT_EQ(Rate(30000, 1001), "15");
    EXPECT_EQ(Rate(16, 1), "15");
    EXPECT_EQ(Rate(15, 1), "15");
    EXPECT_EQ(Rate(14, 1), "14");
    EXPECT_EQ(Rate(Largest, 1), "15");
}

TEST_F(MediaVideoSources, TruncateTheRateToAnInteger) {
    EXPECT_EQ(Rate(10, 1), "10");
    EXPECT_EQ(Rate(25, 2), "12");
    EXPECT_EQ(Rate(15000, 1001), "14");
    EXPECT_EQ(Rate(1, 2), "0");
    EXPECT_EQ(Rate(-1, 2), "0");
    EXPECT_EQ(Rate(-25, 2), "-12");
}

TEST_F(MediaVideoSources, KeepANegativeRate) {
    EXPECT_EQ(Rate(-30, 1), "-30");
    EXPECT_EQ(Rate(30, -1), "-30");
    EXPECT_EQ(Rate(-10, -1), "10");
    EXPECT_EQ(Rate(-30, -1), "15");
    EXPECT_EQ(std::stof(Rate(Smallest, 1)), static_cast<float>(Smallest));
}

TEST_F(MediaVideoSources, HaveNoRateWhenTheDenominatorIsZero) {
    EXPECT_EQ(Rate(25, 0), "0");
    EXPECT_EQ(Rate(0, 0), "0");
    EXPECT_EQ(Rate(Smallest, 0), "0");
    EXPECT_EQ(Rate(0, 1), "0");
}

TEST_F(MediaVideoSources, SurviveARateThatOverflows) {
    EXPECT_EQ(Rate(Smallest, -1), "15");
    EXPECT_EQ(Rate(Smallest, Smallest), "1");
    EXPECT_EQ(Rate(Largest, Smallest), "0");
}

TEST_F(MediaVideoSources, RequestVideoInfoInOrderWithoutTheConfigurationLock) {
    std::vector<std::string> asked;
    channelInfo = [&](std::string const& id) {
        asked.push_back(id);
        auto const locking = std::async(std::launch::async, [this] { return (void)root->GetLock(); });
        EXPECT_EQ(locking.wait_for(std::chrono::seconds(30)), std::future_status::ready);
        return VideoInfo();
    };
    EXPECT_EQ(Ask("<trt:GetVideoSources/>").status, 200);
    EXPECT_THAT(asked, ElementsAre("1", "2"));
}

TEST_F(MediaVideoSources, NeedNoNames) {
    root = std::make_shared<configuration::node::Root>();
    root->Schema({Schema::Collection("channels", {Schema("name", 7, "a number")}, "channels")});
    root->Find("channels")->As<configuration::node::Dynamic>().Add("1");
    EXPECT_EQ(Ask("<trt:GetVideoSources/>").Text("//trt:VideoSources/@token"), "channels.1");
}

TEST_F(MediaVideoSources, ThrowWhenTheChannelsAreNotACollection) {
    root = std::make_shared<configuration::node::Root>();
    EXPECT_THROW(Ask("<trt:GetVideoSources/>"), std::future_error) << "missing";
    root->Schema({Schema("channels.1.name", "Gate", "a map, not a collection")});
    EXPECT_THROW(Ask("<trt:GetVideoSources/>"), std::future_error) << "a map";
}

TEST_F(MediaVideoSources, ThrowWithoutAVideoInfoCallback) {
    channelInfo = nullptr;
    EXPECT_THROW(Ask("<trt:GetVideoSources/>"), std::future_error);
}

TEST_F(MediaVideoSources, AreRefusedWithoutCredentialsBeforeAnythingIsRead) {
    root = std::make_shared<configuration::node::Root>();
    channelInfo = nullptr;
    EXPECT_THAT(AskAnonymously("<trt:GetVideoSources/>"), IsChallenge(authentication::Realm));
    EXPECT_THAT(Ask("<trt:GetVideoSources/>", {.password = "wrong"}), IsChallenge(authentication::Realm));
}

TEST_F(MediaVideoSources, AreListedWithoutCredentialsWhileTheHostRequiresNone) {
    engine.SetEnabled(false);
    EXPECT_EQ(AskAnonymously("<trt:GetVideoSources/>").status, 200);
}

} // namespace
} // namespace zarn::test
