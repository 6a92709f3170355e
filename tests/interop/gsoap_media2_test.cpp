#include "generated_client_test.h"

#include <gmock/gmock.h>

#include <array>
#include <string>
#include <vector>

namespace zarn::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr char OddCodecs[] = R"({
  "settings": {"web_port": 0, "rtsp_port": 0, "onvif": {"enabled": false}},
  "channels": {
    "1": {"name": "Gate", "video": {"codec": "video/x-h264", "width": 1920, "height": 1080, "rate": "10/1"}},
    "2": {"name": "Grüner Hof", "video": {"codec": "video/x-h265", "width": 640, "height": 360, "rate": "30000/1001"}}
  }
})";

class Media2Client : public GeneratedClientTest {
protected:
    Media2Client() : GeneratedClientTest(OddCodecs) {}

    std::vector<tr2__MediaProfile*> Profiles(std::vector<std::string> types, std::string* token = nullptr) {
        _tr2__GetProfiles request;
        request.Type = std::move(types);
        request.Token = token;
        return Ask(&Media2BindingProxy::GetProfiles, request).Profiles;
    }

    tr2__GetConfiguration For(std::string* configurationToken, std::string* profileToken = nullptr) {
        tr2__GetConfiguration request;
        request.ConfigurationToken = configurationToken;
        request.ProfileToken = profileToken;
        return request;
    }

    std::string one = "channels.1";
    std::string two = "channels.2";
};

template <class List>
std::vector<std::string> Tokens(List const& entities) {
    std::vector<std::string> tokens;
    for (auto const* entity : entities) tokens.push_back(entity->token);
    return tokens;
}

TEST_F(Media2Client, ReadsProfilesWithEveryCombinationOfTypes) {
    std::array<std::string, 4> const types{"VideoSource", "VideoEncoder", "Metadata", "Analytics"};
    for (unsigned choice = 0; choice < 1U << types.size(); ++choice) {
        std::vector<std::string> chosen;
        for (std::size_t i = 0; i < types.size(); ++i)
            if (choice & (1U << i)) chosen.push_back(types[i]);
        auto const profiles = Profiles(chosen);
        ASSERT_THAT(Tokens(profiles), ElementsAre("channels.1", "channels.2"));
        for (auto const* profile : profiles) {
            EXPECT_TRUE(*profile->fixed);
            auto const* set = profile->Configurations;
            EXPECT_EQ(set != nullptr, choice != 0);
            if (!set) continue;
            EXPECT_EQ(set->VideoSource != nullptr, (choice & 1U) != 0) << choice;
            EXPECT_EQ(set->VideoEncoder != nullptr, (choice & 2U) != 0) << choice;
            EXPECT_EQ(set->Metadata != nullptr, (choice & 4U) != 0) << choice;
            EXPECT_EQ(set->Analytics != nullptr, (choice & 8U) != 0) << choice;
        }
    }
}

TEST_F(Media2Client, ReadsWholeProfilesByTheTypeAll) {
    for (auto const* profile : Profiles({"All"})) {
        auto const& set = *profile->Configurations;
        EXPECT_EQ(set.VideoSource->SourceToken, profile->token);
        EXPECT_EQ(set.VideoEncoder->token, profile->token);
        EXPECT_EQ(set.Analytics->Name, profile->Name);
        EXPECT_TRUE(*set.Metadata->Analytics);
        EXPECT_EQ(set.Metadata->SessionTimeout, "PT0S");
    }
    auto const* set = Profiles({"Metadata", "All"}).at(0)->Configurations;
    EXPECT_NE(set->Metadata, nullptr);
    EXPECT_EQ(set->VideoSource, nullptr);
    set = Profiles({"all", "AudioSource", "PTZ"}).at(0)->Configurations;
    ASSERT_NE(set, nullptr);
    EXPECT_EQ(set->VideoSource, nullptr);
}

TEST_F(Media2Client, ReadsTheProfileOfAToken) {
    EXPECT_THAT(Tokens(Profiles({}, &two)), ElementsAre("channels.2"));
    std::string unknown = "channels.3";
    EXPECT_THAT(Profiles({"All"}, &unknown), IsEmpty());
}

TEST_F(Media2Client, ReadsEveryConfigurationForAnyToken) {
    auto const all = ElementsAre("channels.1", "channels.2");
    for (auto* token : {static_cast<std::string*>(nullptr), &two}) {
        auto const sources = Ask(&Media2BindingProxy::GetVideoSourceConfigurations, For(token)).Configurations;
        EXPECT_THAT(Tokens(sources), all);
        EXPECT_EQ(sources.at(1)->Bounds->width, 640);
        auto const encoders = Ask(&Media2BindingProxy::GetVideoEncoderConfigurations, For(token)).Configurations;
        EXPECT_THAT(Tokens(encoders), all);
        EXPECT_EQ(encoders.at(0)->Encoding, "H264");
        EXPECT_EQ(encoders.at(1)->Encoding, "H265");
        EXPECT_EQ(encoders.at(1)->RateControl->BitrateLimit, 10000);
        EXPECT_THAT(Tokens(Ask(&Media2BindingProxy::GetMetadataConfigurations, For(token)).Configurations), all);
        EXPECT_THAT(Tokens(Ask(&Media2BindingProxy::GetAnalyticsConfigurations, For(token)).Configurations), all);
    }
}

TEST_F(Media2Client, ReadsTheOptionsOfAnEncoder) {
    auto const options = Ask(&Media2BindingProxy::GetVideoEncoderConfigurationOptions, For(&one, &two)).Options;
    ASSERT_THAT(options, SizeIs(1));
    EXPECT_EQ(options[0]->Encoding, "H265");
    ASSERT_THAT(options[0]->ResolutionsAvailable, SizeIs(1));
    EXPECT_EQ(options[0]->ResolutionsAvailable[0]->Height, 360);
    EXPECT_EQ(options[0]->BitrateRange->Max, 10000);
}

TEST_F(Media2Client, ReadsTheOptionsOfASource) {
    auto const* options = Ask(&Media2BindingProxy::GetVideoSourceConfigurationOptions, For(&two)).Options;
    EXPECT_EQ(options->BoundsRange->XRange->Max, 640);
    EXPECT_EQ(options->BoundsRange->HeightRange->Min, 360);
    EXPECT_THAT(options->VideoSourceTokensAvailable, ElementsAre("channels.2"));
    options = Ask(&Media2BindingProxy::GetVideoSourceConfigurationOptions, For(nullptr)).Options;
    EXPECT_EQ(options->BoundsRange->WidthRange->Max, 9999);
    EXPECT_THAT(options->VideoSourceTokensAvailable, ElementsAre("channels.1", "channels.2"));
}

TEST_F(Media2Client, ReadsTheOptionsOfMetadata) {
    auto const* options = Ask(&Media2BindingProxy::GetMetadataConfigurationOptions, For(nullptr)).Options;
    EXPECT_FALSE(options->PTZStatusFilterOptions->PanTiltStatusSupported);
    EXPECT_FALSE(options->PTZStatusFilterOptions->ZoomStatusSupported);
}

TEST_F(Media2Client, IsToldThatWhateverItSetsIsAccepted) {
    Ask(&Media2BindingProxy::SetMetadataConfiguration);
    Ask(&Media2BindingProxy::SetVideoEncoderConfiguration);
    Ask(&Media2BindingProxy::SetSynchronizationPoint);
}

} // namespace
} // namespace zarn::test
