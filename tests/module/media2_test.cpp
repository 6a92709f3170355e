#include "device_fixture.h"
#include "no_multicast.h"

#include <gtest/gtest.h>

namespace zarn::test {
namespace {

using meta::data::VideoInfo;
using testing::ElementsAre;
using testing::IsEmpty;

class Media2 : public DeviceFixture {};

TEST_F(Media2, ReportsItsCapabilitiesWithoutCredentials) {
    EXPECT_THAT(AskAnonymously("<tr2:GetServiceCapabilities/>"), Answers(R"(
        <tr2:GetServiceCapabilitiesResponse><tr2:Capabilities SnapshotUri="true">
          <tr2:ProfileCapabilities MaximumNumberOfProfiles="2147483647"
                                   ConfigurationsSupported="VideoSource VideoEncoder Metadata Analytics"/>
          <tr2:StreamingCapabilities RTSPStreaming="true" RTPMulticast="false" RTP_RTSP_TCP="true"
                                     NonAggregateControl="false" AutoStartMulticast="false"
                                     SecureRTSPStreaming="false"/>
        </tr2:Capabilities></tr2:GetServiceCapabilitiesResponse>)"));
}

// Configurations

/// The expected configurations of a channel.
struct Described {
    std::string token;
    std::string name;
    std::string encoding;
    std::string width;
    std::string height;

    std::string Begin(std::string const& element) const {
        return "<" + element + " token=\"" + token + "\"><tt:Name>" + name + "</tt:Name><tt:UseCount>1</tt:UseCount>";
    }

    std::string VideoSource(std::string const& element) const {
        return Begin(element) + "<tt:SourceToken>" + token + "</tt:SourceToken><tt:Bounds x=\"0\" y=\"0\" width=\"" +
               width + "\" height=\"" + height + "\"/></" + element + ">";
    }

    std::string VideoEncoder(std::string const& element) const {
        return Begin(element) + "<tt:Encoding>" + encoding + "</tt:Encoding><tt:Resolution><tt:Width>" + width +
               "</tt:Width><tt:Height>" + height + "</tt:Height></tt:Resolution>" +
               "<tt:RateControl><tt:FrameRateLimit>15</tt:FrameRateLimit><tt:BitrateLimit>10000</tt:BitrateLimit>"
               "</tt:RateControl><tt:Quality>1</tt:Quality></" +
               element + ">";
    }

    std::string Analytics(std::string const& element) const { return Begin(element) + "</" + element + ">"; }

    std::string Metadata(std::string const& element) const {
        return Begin(element) + "<tt:Analytics>true</tt:Analytics>" + NoMulticast + "</" + element + ">";
    }

    /// A profile with this configurations element; empty: none.
    std::string Profile(std::string const& configurations) const {
        return "<tr2:Profiles token=\"" + token + "\" fixed=\"true\"><tr2:Name>" + name + "</tr2:Name>" +
               configurations + "</tr2:Profiles>";
    }
};

Described const Gate{"channels.1", "Gate", "H264", "1920", "1080"};
Described const Yard{"channels.2", "Yard", "H265", "1280", "720"};

TEST_F(Media2, ListsOneVideoSourceConfigurationPerChannel) {
    EXPECT_THAT(AskAnonymously("<tr2:GetVideoSourceConfigurations/>"),
                Answers("<tr2:GetVideoSourceConfigurationsResponse>" + Gate.VideoSource("tr2:Configurations") +
                        Yard.VideoSource("tr2:Configurations") + "</tr2:GetVideoSourceConfigurationsResponse>"));
}

TEST_F(Media2, ListsOneVideoEncoderConfigurationPerChannelWithItsOwnEncoding) {
    EXPECT_THAT(AskAnonymously("<tr2:GetVideoEncoderConfigurations/>"),
                Answers("<tr2:GetVideoEncoderConfigurationsResponse>" + Gate.VideoEncoder("tr2:Configurations") +
                        Yard.VideoEncoder("tr2:Configurations") + "</tr2:GetVideoEncoderConfigurationsResponse>"));
}

TEST_F(Media2, ListsOneMetadataConfigurationPerChannel) {
    EXPECT_THAT(AskAnonymously("<tr2:GetMetadataConfigurations/>"),
                Answers("<tr2:GetMetadataConfigurationsResponse>" + Gate.Metadata("tr2:Configurations") +
                        Yard.Metadata("tr2:Configurations") + "</tr2:GetMetadataConfigurationsResponse>"));
}

TEST_F(Media2, ListsOneAnalyticsConfigurationPerChannelWithoutModulesAndRules) {
    EXPECT_THAT(AskAnonymously("<tr2:GetAnalyticsConfigurations/>"),
                Answers("<tr2:GetAnalyticsConfigurationsResponse>" + Gate.Analytics("tr2:Configurations") +
                        Yard.Analytics("tr2:Configurations") + "</tr2:GetAnalyticsConfigurationsResponse>"));
}

TEST_F(Media2, ListsEveryConfigurationForAnyToken) {
    for (std::string const operation : {"GetVideoSourceConfigurations", "GetVideoEncoderConfigurations",
                                        "GetMetadataConfigurations", "GetAnalyticsConfigurations"})
        for (auto const* tokens : {"<tr2:ConfigurationToken>channels.2</tr2:ConfigurationToken>",
                                   "<tr2:ProfileToken>channels.2</tr2:ProfileToken>",
                                   "<tr2:ConfigurationToken>none</tr2:ConfigurationToken><tr2:ProfileToken/>"})
            EXPECT_THAT(AskAnonymously("<tr2:" + operation + ">" + tokens + "</tr2:" + operation + ">")
                            .Texts("//tr2:Configurations/@token"),
                        ElementsAre("channels.1", "channels.2"))
                << operation << tokens;
}

TEST_F(Media2, ReportsAnEmptyEncodingForACodecWithoutHyphenOrSlash) {
    videos["1"] = VideoInfo({1, 1}, "h264", 25, 1);
    videos.erase("2");
    EXPECT_THAT(AskAnonymously("<tr2:GetVideoEncoderConfigurations/>").Texts("//tt:Encoding"), ElementsAre("", ""));
}

TEST_F(Media2, ReportsTheSuffixOfTheCodecAsTheEncoding) {
    videos["1"] = VideoInfo({1, 1}, "image/jpeg", 25, 1);
    videos["2"] = VideoInfo({1, 1}, "video/x-<&ü>", 25, 1);
    EXPECT_THAT(AskAnonymously("<tr2:GetVideoEncoderConfigurations/>").Texts("//tt:Encoding"),
                ElementsAre("JPEG", "<&ü>"));
}

TEST_F(Media2, ReportsTheSameFrameRateLimitForEveryChannel) {
    videos["1"] = VideoInfo({1, 1}, "", 5, 1);
    videos["2"] = VideoInfo({1, 1}, "", -60, 0);
    EXPECT_THAT(AskAnonymously("<tr2:GetVideoEncoderConfigurations/>").Texts("//tt:FrameRateLimit"),
                ElementsAre("15", "15"));
}

TEST_F(Media2, ReportsAnUnknownPictureSizeAsZero) {
    videos.clear();
    EXPECT_THAT(AskAnonymously("<tr2:GetVideoEncoderConfigurations/>").Texts("//tt:Resolution/*"),
                ElementsAre("0", "0", "0", "0"));
}

TEST_F(Media2, WrapsAPictureSizeAboveInt32) {
    videos["1"] = VideoInfo({4294967295U, 2147483648U}, "", 0, 1);
    EXPECT_THAT(
        AskAnonymously("<tr2:GetVideoEncoderConfigurations/>").Texts("//tr2:Configurations[1]//tt:Resolution/*"),
        ElementsAre("-1", "-2147483648"));
}

// Profiles

class Media2Profiles : public DeviceFixture {
protected:
    Reply AskForTypes(std::vector<std::string> const& types, std::string const& token = {}) {
        std::string request = "<tr2:GetProfiles>";
        if (!token.empty()) request += "<tr2:Token>" + token + "</tr2:Token>";
        for (auto const& type : types) request += "<tr2:Type>" + type + "</tr2:Type>";
        return AskAnonymously(request + "</tr2:GetProfiles>");
    }

    /// The names of the configurations of the first profile.
    std::vector<std::string> Kinds(std::vector<std::string> const& types) {
        std::vector<std::string> names;
        auto const reply = AskForTypes(types);
        for (auto const& node : reply.Select("//tr2:Profiles[1]/tr2:Configurations/*"))
            names.emplace_back(node.node().name());
        return names;
    }

    static std::string Response(std::string const& profiles) {
        return "<tr2:GetProfilesResponse>" + profiles + "</tr2:GetProfilesResponse>";
    }
};

std::string const AllOfGate = "<tr2:Configurations>" + Gate.VideoSource("tr2:VideoSource") +
                              Gate.VideoEncoder("tr2:VideoEncoder") + Gate.Analytics("tr2:Analytics") +
                              Gate.Metadata("tr2:Metadata") + "</tr2:Configurations>";
std::string const AllOfYard = "<tr2:Configurations>" + Yard.VideoSource("tr2:VideoSource") +
                              Yard.VideoEncoder("tr2:VideoEncoder") + Yard.Analytics("tr2:Analytics") +
                              Yard.Metadata("tr2:Metadata") + "</tr2:Configurations>";

TEST_F(Media2Profiles, HaveNoConfigurationsWithoutARequestedType) {
    EXPECT_THAT(AskForTypes({}), Answers(Response(Gate.Profile("") + Yard.Profile(""))));
}

TEST_F(Media2Profiles, HaveEveryConfigurationWhenTheFirstTypeIsAll) {
    auto const all = Answers(Response(Gate.Profile(AllOfGate) + Yard.Profile(AllOfYard)));
    EXPECT_THAT(AskForTypes({"All"}), all);
    EXPECT_THAT(AskForTypes({"All", "Metadata", "PTZ"}), all);
}

TEST_F(Media2Profiles, HaveTheRequestedConfigurations) {
    EXPECT_THAT(AskForTypes({"VideoEncoder"}, "channels.2"),
                Answers(Response(Yard.Profile("<tr2:Configurations>" + Yard.VideoEncoder("tr2:VideoEncoder") +
                                              "</tr2:Configurations>"))));
    EXPECT_THAT(Kinds({"VideoSource"}), ElementsAre("tr2:VideoSource"));
    EXPECT_THAT(Kinds({"Metadata"}), ElementsAre("tr2:Metadata"));
    EXPECT_THAT(Kinds({"Analytics"}), ElementsAre("tr2:Analytics"));
    EXPECT_THAT(Kinds({"Metadata", "Analytics", "VideoEncoder", "VideoSource"}),
                ElementsAre("tr2:VideoSource", "tr2:VideoEncoder", "tr2:Analytics", "tr2:Metadata"));
    EXPECT_THAT(Kinds({"Metadata", "Metadata"}), ElementsAre("tr2:Metadata"));
}

TEST_F(Media2Profiles, IgnoreTypeAllUnlessItComesFirst) {
    EXPECT_THAT(Kinds({"Metadata", "All"}), ElementsAre("tr2:Metadata"));
    EXPECT_THAT(Kinds({"PTZ", "All"}), IsEmpty());
}

TEST_F(Media2Profiles, HaveAnEmptySetWhenEveryTypeIsUnknown) {
    auto const empty = Answers(Response(Gate.Profile("<tr2:Configurations/>") + Yard.Profile("<tr2:Configurations/>")));
    EXPECT_THAT(AskForTypes({"AudioSource", "AudioEncoder", "AudioOutput", "AudioDecoder", "PTZ", "Receiver"}), empty);
    EXPECT_THAT(AskForTypes({"all", "ALL", "videosource", "VideoSource2", " Metadata x", "Meta data"}), empty);
    EXPECT_THAT(AskForTypes({""}), empty);
}

TEST_F(Media2Profiles, MatchTypesAndTokensWithTheirWhiteSpace) {
    EXPECT_THAT(Kinds({" All "}), IsEmpty());
    EXPECT_THAT(Kinds({"Metadata\n"}), IsEmpty());
    EXPECT_THAT(AskForTypes({}, " channels.1"), Answers("<tr2:GetProfilesResponse/>"));
}

TEST_F(Media2Profiles, MayBeAskedForByTypesAroundTheToken) {
    EXPECT_THAT(AskAnonymously("<tr2:GetProfiles><tr2:Type>Metadata</tr2:Type><tr2:Token>channels.2</tr2:Token>"
                               "<tr2:Type>Analytics</tr2:Type></tr2:GetProfiles>"),
                Answers(Response(Yard.Profile("<tr2:Configurations>" + Yard.Analytics("tr2:Analytics") +
                                              Yard.Metadata("tr2:Metadata") + "</tr2:Configurations>"))));
}

TEST_F(Media2Profiles, AreTheOnesOfTheFirstOfTwoTokens) {
    EXPECT_THAT(AskAnonymously("<tr2:GetProfiles><tr2:Token>channels.2</tr2:Token><tr2:Token>channels.1</tr2:Token>"
                               "</tr2:GetProfiles>"),
                Answers(Response(Yard.Profile(""))));
}

TEST_F(Media2Profiles, AreOnlyTheOneWithTheRequestedToken) {
    EXPECT_THAT(AskForTypes({}, "channels.2"), Answers(Response(Yard.Profile(""))));
    EXPECT_THAT(AskForTypes({"All"}, "channels.1"), Answers(Response(Gate.Profile(AllOfGate))));
}

TEST_F(Media2Profiles, AreEmptyForAnUnknownToken) {
    for (std::string const token : {"channels.3", "1", "channels", "channels.", "Channels.1", "channels.1.name", "..",
                                    "&lt;channels.1&gt;", "名"})
        EXPECT_THAT(AskForTypes({"All"}, token), Answers("<tr2:GetProfilesResponse/>")) << token;
    EXPECT_THAT(AskForTypes({}, std::string(100'000, '.')), Answers("<tr2:GetProfilesResponse/>"));
}

TEST_F(Media2Profiles, AreAllForAnEmptyToken) {
    EXPECT_THAT(AskAnonymously("<tr2:GetProfiles><tr2:Token/></tr2:GetProfiles>"),
                Answers(Response(Gate.Profile("") + Yard.Profile(""))));
}

TEST_F(Media2Profiles, RequestVideoInfoOfTheSelectedChannelsOnly) {
    std::vector<std::string> asked;
    channelInfo = [&](std::string const& id) {
        asked.push_back(id);
        return VideoInfo();
    };
    AskForTypes({}, "channels.2");
    AskForTypes({"Metadata"});
    AskForTypes({"All"}, "channels.3");
    EXPECT_THAT(asked, ElementsAre("2", "1", "2"));
}

// Options

TEST_F(Media2, OffersOneMetadataOptionForAnyToken) {
    for (auto const* tokens : {"", "<tr2:ProfileToken>channels.1</tr2:ProfileToken>",
                               "<tr2:ConfigurationToken>none</tr2:ConfigurationToken>"})
        EXPECT_THAT(AskAnonymously(std::string("<tr2:GetMetadataConfigurationOptions>") + tokens +
                                   "</tr2:GetMetadataConfigurationOptions>"),
                    Answers(R"(<tr2:GetMetadataConfigurationOptionsResponse><tr2:Options><tt:PTZStatusFilterOptions>
                        <tt:PanTiltStatusSupported>false</tt:PanTiltStatusSupported>
                        <tt:ZoomStatusSupported>false</tt:ZoomStatusSupported>
                    </tt:PTZStatusFilterOptions></tr2:Options></tr2:GetMetadataConfigurationOptionsResponse>)"));
}

// Operations that are accepted and ignored

TEST_F(Media2, AcceptsAnyMetadataConfigurationAndChangesNothing) {
    auto const before = AskAnonymously("<tr2:GetMetadataConfigurations/>").Message();
    EXPECT_THAT(AskAnonymously("<tr2:SetMetadataConfiguration>" + Gate.Metadata("tr2:Configuration") +
                               "</tr2:SetMetadataConfiguration>"),
                Answers("<tr2:SetMetadataConfigurationResponse/>"));
    for (std::string const content :
         {"", "<tr2:Configuration/>", "<tr2:Configuration><tt:UseCount>many</tt:UseCount></tr2:Configuration>",
          "<tr2:Configuration><tt:Multicast><tt:Address><tt:Type>IPv5</tt:Type></tt:Address><tt:Port/></tt:Multicast>"
          "<tt:Analytics>maybe</tt:Analytics></tr2:Configuration>"})
        EXPECT_THAT(AskAnonymously("<tr2:SetMetadataConfiguration>" + content + "</tr2:SetMetadataConfiguration>"),
                    Answers("<tr2:SetMetadataConfigurationResponse/>"))
            << content;
    EXPECT_EQ(AskAnonymously("<tr2:GetMetadataConfigurations/>").Message(), before);
}

TEST_F(Media2, AcceptsAnyVideoEncoderConfigurationAndChangesNothing) {
    auto const before = AskAnonymously("<tr2:GetVideoEncoderConfigurations/>").Message();
    Described const other{"channels.1", "Other", "H266", "1", "1"};
    EXPECT_THAT(AskAnonymously("<tr2:SetVideoEncoderConfiguration>" + other.VideoEncoder("tr2:Configuration") +
                               "</tr2:SetVideoEncoderConfiguration>"),
                Answers("<tr2:SetVideoEncoderConfigurationResponse/>"));
    for (std::string const content :
         {"", "<tr2:Configuration GovLength='few'/>",
          "<tr2:Configuration><tt:Quality>good</tt:Quality><tt:Resolution><tt:Width/></tt:Resolution>"
          "</tr2:Configuration>"})
        EXPECT_THAT(
            AskAnonymously("<tr2:SetVideoEncoderConfiguration>" + content + "</tr2:SetVideoEncoderConfiguration>"),
            Answers("<tr2:SetVideoEncoderConfigurationResponse/>"))
            << content;
    EXPECT_EQ(AskAnonymously("<tr2:GetVideoEncoderConfigurations/>").Message(), before);
}

TEST_F(Media2, AcceptsSynchronizationPointsOfAnyProfile) {
    for (auto const* content :
         {"", "<tr2:ProfileToken>channels.1</tr2:ProfileToken>", "<tr2:ProfileToken>nothing</tr2:ProfileToken>"})
        EXPECT_THAT(
            AskAnonymously(std::string("<tr2:SetSynchronizationPoint>") + content + "</tr2:SetSynchronizationPoint>"),
            Answers("<tr2:SetSynchronizationPointResponse/>"));
}

} // namespace
} // namespace zarn::test
