#include "host/settings.h"

#include <service/onvif/manager.h>
#include <zarn/authentication/engine.h>
#include <zarn/configuration/error.h>

#include <boost/json/parse.hpp>
#include <boost/json/serialize.hpp>
#include <gmock/gmock.h>

#include <memory>

namespace zarn::host {
namespace {

using configuration::Error;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class SettingsTest : public testing::Test {
protected:
    SettingsTest() { DescribeSettings(*root); }

    void Read(std::string const& json) { root->FromJson(boost::json::parse(json)); }

    std::string GetError(std::string const& json) {
        try {
            Read(json);
            return "";
        } catch (Error const& error) {
            return error.what();
        }
    }

    std::shared_ptr<configuration::node::Root> root = std::make_shared<configuration::node::Root>();
};

TEST_F(SettingsTest, HaveDefaults) {
    Read("{}");
    EXPECT_EQ(ReadPort(*root, WebPortPath), 8080);
    EXPECT_EQ(ReadPort(*root, RtspPortPath), 8554);
    EXPECT_TRUE(ReadBool(*root, AuthenticationPath));
    EXPECT_EQ(ReadNonceLife(*root), std::chrono::minutes(5));
    EXPECT_FALSE(ReadBool(*root, OnvifPath));
    EXPECT_TRUE(ReadTlsFiles(*root).IsEmpty());
    EXPECT_EQ(ReadLimits(*root), web::Limits());
    EXPECT_THAT(ReadChannels(*root), IsEmpty());
    EXPECT_EQ(ReadIdentity(*root).GetProductModel(), "zarn-host");
}

TEST_F(SettingsTest, DescribeTheSettingOfTheModuleAsItDoesItself) {
    ZarnAuthenticationEngine const engine;
    auto const own = std::make_shared<configuration::node::Root>();
    service::onvif::Manager const manager(&engine, own, {}, {});
    EXPECT_EQ(root->Find(OnvifPath)->GetSchema(), own->Find(OnvifPath)->GetSchema());
}

TEST_F(SettingsTest, LeaveAnIdentityEmptyThatIsGivenAsEmpty) {
    Read(R"({"identity": {"manufacturer": "", "name": "Grün"}})");
    auto const identity = ReadIdentity(*root);
    EXPECT_EQ(identity.GetProductManufacturer(), "");
    EXPECT_EQ(identity.GetProductName(), "Grün");
}

TEST_F(SettingsTest, GiveEveryLimit) {
    Read(R"({"settings": {"limits": {"connections": 1, "connections_per_address": 2, "exchanges": 3, "body_bytes": 4096,
             "header_seconds": 5, "idle_seconds": 6, "failed_logins_per_minute": 7}}})");
    EXPECT_EQ(ReadLimits(*root), (web::Limits{.connections = 1,
                                              .connectionsPerAddress = 2,
                                              .exchanges = 3,
                                              .bodyBytes = 4096,
                                              .headerTime = std::chrono::seconds(5),
                                              .idleTime = std::chrono::seconds(6)}));
    EXPECT_EQ(ReadRtspLimits(*root).connections, 1U);
    EXPECT_EQ(ReadRtspLimits(*root).connectionsPerAddress, 2U);
    EXPECT_EQ(ReadFailedLoginsLimit(*root), 7U);
}

TEST_F(SettingsTest, LetNoncesLiveFiveMinutesAtMost) {
    Read(R"({"settings": {"authentication": {"nonce_seconds": 1}}})");
    EXPECT_EQ(ReadNonceLife(*root), std::chrono::seconds(1));
    for (auto const* text : {"0", "301"}) {
        EXPECT_THAT(GetError(std::string(R"({"settings": {"authentication": {"nonce_seconds": )") + text + "}}}"),
                    HasSubstr("settings.authentication.nonce_seconds: " + std::string(text) +
                              " is not a number from 1 to 300"));
    }
}

TEST_F(SettingsTest, GiveTheChannelsInTheOrderOfTheFile) {
    Read(R"({"channels": {
        "b-2": {"name": "B", "source": "rtsp://camera/stream", "user": "u", "password": "p"},
        "1": {"name": "A", "video": {"codec": "odd", "width": 1920, "height": 1080, "rate": "30000/1001"}}}})");
    EXPECT_THAT(
        ReadChannels(*root),
        ElementsAre(
            video::ChannelSettings{
                .id = "b-2", .source = "rtsp://camera/stream", .user = "u", .password = "p", .described = {}},
            video::ChannelSettings{
                .id = "1", .source = "", .user = "", .password = "", .described = {{1920, 1080}, "odd", 30000, 1001}}));
}

TEST_F(SettingsTest, KeepWhatAChannelDoesNotSayOutOfTheFile) {
    Read(R"({"channels": {"1": {"name": "A"}}})");
    EXPECT_EQ(boost::json::serialize(root->Find("channels")->ToJson(configuration::Layer::Persisted)),
              R"({"1":{"name":"A"}})");
}

TEST_F(SettingsTest, KeepAPasswordInTheFileAndShowItToNobody) {
    Read(R"({"channels": {"1": {"name": "A", "password": "sesame"}}})");
    EXPECT_THAT(boost::json::serialize(root->ToJson(configuration::Layer::Persisted)), HasSubstr("sesame"));
    EXPECT_THAT(boost::json::serialize(root->ToJson(configuration::Layer::Effective)),
                testing::Not(HasSubstr("sesame")));
}

TEST_F(SettingsTest, RefuseValuesThatMakeNoSense) {
    for (auto const* json : {
             R"({"settings": {"web_port": -1}})",
             R"({"settings": {"web_port": 65536}})",
             R"({"settings": {"web_port": "80"}})",
             R"({"settings": {"limits": {"connections": 0}}})",
             R"({"settings": {"limits": {"body_bytes": 1023}}})",
             R"({"settings": {"limits": {"header_seconds": 3601}}})",
             R"({"settings": {"limits": {"idle_seconds": 0}}})",
             R"({"settings": {"limits": {"failed_logins_per_minute": 10001}}})",
             R"({"identity": {"name": "a\nb"}})",
             R"({"channels": {"1": {"name": "a\u0000b"}}})",
             R"({"channels": {"1": {"video": {"rate": "x"}}}})",
             R"({"channels": {"1": {"video": {"width": -1}}}})",
             R"({"channels": {"1": {"source": "test:none-such"}}})",
             R"({"channels": {"a.b": {}}})",
             R"({"channels": {"1": {"colour": "red"}}})",
             R"({"channels": []})",
             R"({"events": {}})",
         }) {
        EXPECT_THAT(GetError(json), HasSubstr(": ")) << json;
    }
    EXPECT_THAT(GetError(R"({"identity": {"name": ")" + std::string(257, 'a') + R"("}})"), HasSubstr("identity.name"));
    EXPECT_EQ(GetError(R"({"identity": {"name": ")" + std::string(256, 'a') + R"("}})"), "");
}

TEST_F(SettingsTest, WantCertificateAndKeyTogether) {
    Read(R"({"settings": {"tls": {"certificate": "a", "private_key": "b"}}})");
    EXPECT_EQ(ReadTlsFiles(*root), (TlsFiles{"a", "b"}));
    Read(R"({"settings": {"tls": {"certificate": "a"}}})");
    EXPECT_THROW(ReadTlsFiles(*root), Error);
    Read(R"({"settings": {"tls": {"private_key": "b"}}})");
    EXPECT_THROW(ReadTlsFiles(*root), Error);
}

TEST_F(SettingsTest, CanBeOverriddenAsText) {
    Read(R"({"channels": {"1": {"name": "A"}}})");
    OverrideSetting(*root, WebPortPath, "18080");
    OverrideSetting(*root, AuthenticationPath, "false");
    OverrideSetting(*root, "channels.1.video.rate", "15/1");
    EXPECT_EQ(ReadPort(*root, WebPortPath), 18080);
    EXPECT_FALSE(ReadBool(*root, AuthenticationPath));
    EXPECT_EQ(ReadChannels(*root).at(0).described.GetFrameRateNumerator(), 15);
}

TEST_F(SettingsTest, CannotBeOverriddenWithWhatTheyDoNotTake) {
    for (auto const& [path, text] :
         std::vector<std::pair<std::string, std::string>>{{"settings.web_port", "70000"},
                                                          {"settings.web_port", ""},
                                                          {"settings.authentication.enabled", "yes"},
                                                          {"settings.nothing", "1"},
                                                          {"settings", "1"},
                                                          {"", "1"},
                                                          {"channels.9.name", "x"},
                                                          {"identity.name", "\xff"},
                                                          {"identity.name", "\xEF\xBF\xBE"},
                                                          {"identity.name", "\xEF\xBF\xBF"}}) {
        EXPECT_THROW(OverrideSetting(*root, path, text), Error) << path << "=" << text;
    }
}

TEST_F(SettingsTest, QuoteAWrongValueInOneLine) {
    try {
        OverrideSetting(*root, "settings.limits.connections", "4\x7F\xC2\x85");
        FAIL() << "taken";
    } catch (Error const& error) {
        EXPECT_THAT(error.what(), testing::HasSubstr(R"("4\x7f\xc2\x85")"));
    }
}

TEST_F(SettingsTest, NameAnUnknownPathInOneShortLine) {
    try {
        OverrideSetting(*root, "channels.\x01\n\xff" + std::string(10000, 'a'), "1");
        FAIL() << "taken";
    } catch (Error const& error) {
        EXPECT_THAT(error.what(), testing::StartsWith(R"(channels.\x01\n\xffaaa)"));
        EXPECT_THAT(error.what(), testing::EndsWith("more): there is no such setting"));
    }
}

} // namespace
} // namespace zarn::host
