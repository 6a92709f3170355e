#include "support/failing_nothrow_new.h"

#include <service/onvif/media_common.h>
#include <service/onvif/soap_context.h>
#include <zarn/configuration/schema.h>
#include <zarn/network/local.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <locale>
#include <sstream>

namespace zarn::service::onvif {
namespace {

using configuration::Schema;
using meta::data::VideoInfo;
using testing::AllOf;
using testing::Pointee;
using testing::Property;
using testing::StartsWith;
using testing::Throws;

// Ids, codecs and tokens

TEST(GetChannelId, ReturnsTheTextAfterTheLastDot) {
    EXPECT_EQ(GetChannelId("channels.1"), "1");
    EXPECT_EQ(GetChannelId("a.b.c-d_e"), "c-d_e");
    EXPECT_EQ(GetChannelId(".1"), "1");
}

TEST(GetChannelId, ReturnsTheWholeTokenWithoutADot) {
    EXPECT_EQ(GetChannelId("1"), "1");
    EXPECT_EQ(GetChannelId(""), "");
}

TEST(GetChannelId, ReturnsNothingForATokenThatEndsInADot) {
    EXPECT_EQ(GetChannelId("channels."), "");
    EXPECT_EQ(GetChannelId(".."), "");
}

TEST(ConvertCodec, ReturnsTheTextAfterTheLastHyphenInUpperCase) {
    EXPECT_EQ(ConvertCodec("video/x-h264"), "H264");
    EXPECT_EQ(ConvertCodec("video/x-h265"), "H265");
    EXPECT_EQ(ConvertCodec("video/x-vnd-mp4v"), "MP4V");
    EXPECT_EQ(ConvertCodec("-av1"), "AV1");
}

TEST(ConvertCodec, ReturnsTheTextAfterTheLastSlashWithoutAHyphen) {
    EXPECT_EQ(ConvertCodec("video/h265"), "H265");
    EXPECT_EQ(ConvertCodec("image/jpeg"), "JPEG");
    EXPECT_EQ(ConvertCodec("a/b/c"), "C");
}

TEST(ConvertCodec, PrefersTheHyphenEvenToALaterSlash) { EXPECT_EQ(ConvertCodec("video/x-h264/main"), "H264/MAIN"); }

TEST(ConvertCodec, ReturnsNothingWithoutHyphenOrSlash) {
    EXPECT_EQ(ConvertCodec("h264"), "");
    EXPECT_EQ(ConvertCodec(""), "");
}

TEST(ConvertCodec, ReturnsNothingForATrailingHyphenOrSlash) {
    EXPECT_EQ(ConvertCodec("video/x-"), "");
    EXPECT_EQ(ConvertCodec("video/"), "");
}

TEST(ConvertCodec, KeepsCharactersWithoutUpperCaseInTheLocale) { EXPECT_EQ(ConvertCodec("video/x-ü1_摄"), "ü1_摄"); }

/// Sets the locale's upper case of "x" to "4".
class OddUpperCase : public std::ctype<char> {
    char do_toupper(char character) const override { return character == 'x' ? '4' : character; }
};

TEST(ConvertCodec, UsesTheGlobalLocaleForEveryCharacter) {
    auto const before = std::locale::global(std::locale(std::locale::classic(), new OddUpperCase));
    auto const encoding = ConvertCodec("video/x-hx6x");
    std::locale::global(before);
    EXPECT_EQ(encoding, "h464");
}

class GetTokenOf : public testing::Test {
protected:
    std::string profile = "channels.1";
    std::string configuration = "channels.2";
    std::string empty;
    tr2__GetConfiguration request;
};

TEST_F(GetTokenOf, ANullRequestIsEmpty) { EXPECT_EQ(GetToken(nullptr), ""); }

TEST_F(GetTokenOf, ARequestWithoutTokensIsEmpty) { EXPECT_EQ(GetToken(&request), ""); }

TEST_F(GetTokenOf, ARequestWithOneTokenIsThatToken) {
    request.ConfigurationToken = &configuration;
    EXPECT_EQ(GetToken(&request), "channels.2");
    request.ConfigurationToken = nullptr;
    request.ProfileToken = &profile;
    EXPECT_EQ(GetToken(&request), "channels.1");
}

TEST_F(GetTokenOf, ARequestWithBothTokensIsTheProfileTokenEvenIfEmpty) {
    request.ConfigurationToken = &configuration;
    request.ProfileToken = &profile;
    EXPECT_EQ(GetToken(&request), "channels.1");
    request.ProfileToken = &empty;
    EXPECT_EQ(GetToken(&request), "");
}

// Makers

class Make : public testing::Test {
protected:
    template <class Configuration>
    static void ExpectIdentity(Configuration const& configuration) {
        EXPECT_EQ(configuration.Name, "Gate");
        EXPECT_EQ(configuration.UseCount, 1);
        EXPECT_EQ(configuration.token, "channels.1");
    }

    static void ExpectNoMulticast(tt__MulticastConfiguration const& multicast) {
        EXPECT_EQ(multicast.Address->Type, tt__IPType__IPv4);
        EXPECT_EQ(multicast.Port, 0);
        EXPECT_EQ(multicast.TTL, 0);
        EXPECT_FALSE(multicast.AutoStart);
    }

    std::shared_ptr<struct soap> context = MakeSoapContext();
    struct soap* const soap = context.get();
    std::string const token = "channels.1";
    std::string const name = "Gate";
    VideoInfo const info{{1920, 1080}, "video/x-h265", 25, 1};
};

TEST_F(Make, VideoSourceConfigurationCoversTheWholePicture) {
    auto const& made = *MakeVideoSourceConfiguration(soap, token, name, info);
    ExpectIdentity(made);
    EXPECT_EQ(made.SourceToken, "channels.1");
    EXPECT_EQ(made.Bounds->x, 0);
    EXPECT_EQ(made.Bounds->y, 0);
    EXPECT_EQ(made.Bounds->width, 1920);
    EXPECT_EQ(made.Bounds->height, 1080);
}

TEST_F(Make, VideoEncoderConfigurationClaimsH264ForAnyCodec) {
    auto const& made = *MakeVideoEncoderConfiguration(soap, token, name, info);
    ExpectIdentity(made);
    EXPECT_EQ(made.Encoding, tt__VideoEncoding__H264);
    EXPECT_EQ(made.Resolution->Width, 1920);
    EXPECT_EQ(made.Resolution->Height, 1080);
    EXPECT_EQ(made.Quality, 1.0F);
    ExpectNoMulticast(*made.Multicast);
    EXPECT_EQ(made.SessionTimeout, "PT0S");
}

TEST_F(Make, MetadataConfigurationContainsOnlyAnalytics) {
    auto const& made = *MakeMetadataConfiguration(soap, token, name);
    ExpectIdentity(made);
    EXPECT_THAT(made.Analytics, Pointee(true));
    ExpectNoMulticast(*made.Multicast);
    EXPECT_EQ(made.SessionTimeout, "PT0S");
}

TEST_F(Make, ProfileHoldsTheVideoAndMetadataConfigurationsOfTheChannel) {
    auto const& made = *MakeProfile(soap, token, name, info);
    EXPECT_EQ(made.Name, "Gate");
    EXPECT_EQ(made.token, "channels.1");
    ExpectIdentity(*made.VideoSourceConfiguration);
    ExpectIdentity(*made.VideoEncoderConfiguration);
    ExpectIdentity(*made.MetadataConfiguration);
    EXPECT_EQ(made.VideoAnalyticsConfiguration, nullptr);
    EXPECT_EQ(made.fixed, nullptr);
}

TEST_F(Make, ResolutionOfNoVideoIsZero) {
    auto const& made = *MakeResolution(soap, VideoInfo());
    EXPECT_EQ(made.Width, 0);
    EXPECT_EQ(made.Height, 0);
}

TEST_F(Make, ResolutionWrapsASizeAboveInt32) {
    auto const& made = *MakeResolution(soap, {{std::numeric_limits<std::uint32_t>::max(), 2147483648U}, "", 0, 1});
    EXPECT_EQ(made.Width, -1);
    EXPECT_EQ(made.Height, std::numeric_limits<int>::min());
}

TEST_F(Make, OmitsMembersWithoutMemoryAndCanStillBeWritten) {
    for (int n = 1; n < 10; ++n) {
        tt__Profile const* profile = nullptr;
        {
            test::FailingNothrowNew const failing(n);
            profile = MakeProfile(soap, token, name, info);
        }
        ASSERT_NE(profile, nullptr) << n;
        std::ostringstream written;
        soap->os = &written;
        EXPECT_EQ(soap_begin_send(soap) || profile->soap_put(soap, "Profile", nullptr) || soap_end_send(soap), SOAP_OK);
        soap->os = nullptr;
        EXPECT_THAT(written.str(), testing::HasSubstr("<tt:Name>Gate</tt:Name>")) << n;
    }
}

TEST_F(Make, ReturnsNullWithoutMemory) {
    test::FailingNothrowNew const failing(0);
    EXPECT_EQ(MakeProfile(soap, token, name, info), nullptr);
    EXPECT_EQ(MakeVideoSourceConfiguration(soap, token, name, info), nullptr);
    EXPECT_EQ(MakeVideoEncoderConfiguration(soap, token, name, info), nullptr);
    EXPECT_EQ(MakeMetadataConfiguration(soap, token, name), nullptr);
    EXPECT_EQ(MakeResolution(soap, info), nullptr);
}

// Addresses

class Uri : public testing::Test {
protected:
    Uri() {
        root->Schema({Schema(WebPortPath, std::uint16_t{80}, "web port"),
                      Schema(RtspPortPath, std::uint16_t{554}, "RTSP port")});
    }

    std::shared_ptr<configuration::node::Root> root = std::make_shared<configuration::node::Root>();
    std::string const address = network::GetLocalIPAddress().to_string();
};

TEST_F(Uri, OfAStreamIsTheTokenAsAPathOnTheRtspPort) {
    EXPECT_EQ(MakeStreamUri(*root, "channels.1"), "rtsp://" + address + ":554/channels/1");
    EXPECT_EQ(MakeStreamUri(*root, "1"), "rtsp://" + address + ":554/1");
    EXPECT_EQ(MakeStreamUri(*root, ""), "rtsp://" + address + ":554/");
    EXPECT_EQ(MakeStreamUri(*root, "a..b."), "rtsp://" + address + ":554/a//b/");
}

TEST_F(Uri, OfASnapshotNamesTheChannelIdOnTheWebPort) {
    EXPECT_EQ(MakeSnapshotUri(*root, false, "channels.1"), "http://" + address + ":80/snapshot/1/latest.jpeg");
    EXPECT_EQ(MakeSnapshotUri(*root, true, "channels.1"), "https://" + address + ":80/snapshot/1/latest.jpeg");
    EXPECT_EQ(MakeSnapshotUri(*root, false, "gate"), "http://" + address + ":80/snapshot/gate/latest.jpeg");
    EXPECT_EQ(MakeSnapshotUri(*root, false, "channels."), "http://" + address + ":80/snapshot//latest.jpeg");
}

TEST_F(Uri, ThrowsBadCastForAMissingOrInvalidPort) {
    auto const odd = std::make_shared<configuration::node::Root>();
    auto const isBadCast = [](char const* path) {
        return Throws<object::BadCast>(AllOf(Property(&object::BadCast::GetTypeName, "zarn.configuration.node.UInt16"),
                                             Property(&object::BadCast::what, StartsWith(path))));
    };
    EXPECT_THAT([&] { MakeStreamUri(*odd, "channels.1"); }, isBadCast(RtspPortPath));
    EXPECT_THAT([&] { MakeSnapshotUri(*odd, false, "channels.1"); }, isBadCast(WebPortPath));
    odd->Schema({Schema(WebPortPath, 80, "a signed number"), Schema(RtspPortPath, "554", "a text")});
    EXPECT_THAT([&] { MakeStreamUri(*odd, "channels.1"); }, isBadCast(RtspPortPath));
    EXPECT_THAT([&] { MakeSnapshotUri(*odd, false, "channels.1"); }, isBadCast(WebPortPath));
}

} // namespace
} // namespace zarn::service::onvif
