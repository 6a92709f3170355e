#include "device_fixture.h"

#include <zarn/authentication/realm.h>
#include <zarn/configuration/node/primitive.h>
#include <zarn/configuration/schema.h>
#include <zarn/network/local.h>

#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <future>
#include <optional>
#include <utility>

namespace zarn::test {
namespace {

using configuration::Schema;

/// Requests URIs from one of the two media services.
class Uris : public DeviceFixture, public testing::WithParamInterface<char const*> {
protected:
    Reply Stream(std::string const& token, Sending const& sending = {}) {
        return AskFor("GetStreamUri", token, sending);
    }

    Reply Snapshot(std::string const& token, Sending const& sending = {}) {
        return AskFor("GetSnapshotUri", token, sending);
    }

    static std::string Uri(Reply const& reply) { return reply.Text("//tt:Uri | //tr2:Uri"); }

    void SetPort(char const* path, std::uint16_t port) {
        root->Find(path)->As<configuration::node::Primitive<std::uint16_t>>().Set(port);
    }

    std::string const prefix = GetParam();
    std::string const address = network::GetLocalIPAddress().to_string();

private:
    Reply AskFor(std::string const& operation, std::string const& token, Sending const& sending) {
        return Ask("<" + prefix + operation + "><" + prefix + "ProfileToken>" + token + "</" + prefix +
                       "ProfileToken></" + prefix + operation + ">",
                   sending);
    }
};

TEST_P(Uris, OfAStreamUseTheTokenAsPathOnTheRtspPort) {
    EXPECT_EQ(Uri(Stream("channels.1")), "rtsp://" + address + ":8554/channels/1");
    EXPECT_EQ(Uri(Stream("a.b.c")), "rtsp://" + address + ":8554/a/b/c");
}

TEST_P(Uris, OfASnapshotUseTheChannelIdOnTheWebPort) {
    EXPECT_EQ(Uri(Snapshot("channels.1")), "http://" + address + ":8080/snapshot/1/latest.jpeg");
    EXPECT_EQ(Uri(Snapshot("a.b.c")), "http://" + address + ":8080/snapshot/c/latest.jpeg");
}

TEST_P(Uris, ContainEveryPortIncludingDefaultsAndExtremes) {
    for (auto const port : std::to_array<std::uint16_t>({0, 80, 443, 554, 65535})) {
        SetPort("settings.rtsp_port", port);
        SetPort("settings.web_port", port);
        auto const text = std::to_string(port);
        EXPECT_EQ(Uri(Stream("channels.1")), "rtsp://" + address + ":" + text + "/channels/1");
        EXPECT_EQ(Uri(Snapshot("channels.1")), "http://" + address + ":" + text + "/snapshot/1/latest.jpeg");
    }
}

TEST_P(Uris, UseTheConfiguredPortNotThatOfTheRunningServer) {
    Manager().UpdateServerPort(9999);
    EXPECT_EQ(Uri(Snapshot("channels.1")), "http://" + address + ":8080/snapshot/1/latest.jpeg");
}

TEST_P(Uris, OfASnapshotUseHttpsWhileTlsIsOn) {
    Manager().UpdateSSLState(true);
    EXPECT_EQ(Uri(Snapshot("channels.1")), "https://" + address + ":8080/snapshot/1/latest.jpeg");
    EXPECT_EQ(Uri(Stream("channels.1")), "rtsp://" + address + ":8554/channels/1");
    Manager().UpdateSSLState(false);
    EXPECT_EQ(Uri(Snapshot("channels.1")), "http://" + address + ":8080/snapshot/1/latest.jpeg");
}

TEST_P(Uris, UseATokenWithoutADotAsPathAndId) {
    EXPECT_EQ(Uri(Stream("gate")), "rtsp://" + address + ":8554/gate");
    EXPECT_EQ(Uri(Snapshot("gate")), "http://" + address + ":8080/snapshot/gate/latest.jpeg");
}

TEST_P(Uris, MaskWhatXmlCannotCarry) {
    EXPECT_EQ(Uri(Stream("a&#x3;")), "rtsp://" + address + ":8554/a?????");
    EXPECT_EQ(Uri(Snapshot("a.\x02")), "http://" + address + ":8080/snapshot/" + std::string(5, '?') + "/latest.jpeg");
    EXPECT_EQ(Uri(Stream("a&#xFFFE;")), "rtsp://" + address + ":8554/a???");
    EXPECT_EQ(Uri(Snapshot("Grün")), "http://" + address + ":8080/snapshot/Grün/latest.jpeg");
}

TEST_P(Uris, HaveAnEmptyIdForATokenThatEndsInADot) {
    EXPECT_EQ(Uri(Stream("channels.")), "rtsp://" + address + ":8554/channels/");
    EXPECT_EQ(Uri(Snapshot("channels.")), "http://" + address + ":8080/snapshot//latest.jpeg");
}

TEST_P(Uris, AreBuiltForAnEmptyOrMissingToken) {
    EXPECT_EQ(Uri(Stream("")), "rtsp://" + address + ":8554/");
    EXPECT_EQ(Uri(Snapshot("")), "http://" + address + ":8080/snapshot//latest.jpeg");
    EXPECT_EQ(Uri(Ask("<" + prefix + "GetStreamUri/>")), "rtsp://" + address + ":8554/");
    EXPECT_EQ(Uri(Ask("<" + prefix + "GetSnapshotUri/>")), "http://" + address + ":8080/snapshot//latest.jpeg");
}

TEST_P(Uris, ContainAnyTokenUnescaped) {
    EXPECT_EQ(Uri(Stream("channels.99")), "rtsp://" + address + ":8554/channels/99");
    EXPECT_EQ(Uri(Stream("..")), "rtsp://" + address + ":8554///");
    EXPECT_EQ(Uri(Snapshot("../x")), "http://" + address + ":8080/snapshot//x/latest.jpeg");
    EXPECT_EQ(Uri(Stream("&lt;a&gt;&amp;&quot; b?名")), "rtsp://" + address + ":8554/<a>&\" b?名");
    std::string const token(100'000, 'x');
    EXPECT_EQ(Uri(Snapshot(token)), "http://" + address + ":8080/snapshot/" + token + "/latest.jpeg");
}

TEST_P(Uris, NeedNeitherChannelsNorVideoInfo) {
    root = std::make_shared<configuration::node::Root>();
    root->Schema({Schema("settings.web_port", std::uint16_t{80}, "port"),
                  Schema("settings.rtsp_port", std::uint16_t{554}, "port")});
    channelInfo = nullptr;
    EXPECT_EQ(Uri(Stream("channels.1")), "rtsp://" + address + ":554/channels/1");
    EXPECT_EQ(Uri(Snapshot("channels.1")), "http://" + address + ":80/snapshot/1/latest.jpeg");
}

TEST_P(Uris, DoNotLockTheConfiguration) {
    Manager();
    auto lock = std::make_optional(root->GetLock());
    auto statuses = std::async(
        std::launch::async, [this] { return std::pair(Stream("channels.1").status, Snapshot("channels.1").status); });
    EXPECT_EQ(statuses.wait_for(std::chrono::seconds(30)), std::future_status::ready);
    lock.reset();
    EXPECT_EQ(statuses.get(), std::pair(200, 200));
}

TEST_P(Uris, ThrowWhenTheirPortIsMissing) {
    root = std::make_shared<configuration::node::Root>();
    EXPECT_THROW(Stream("channels.1"), std::future_error);
    EXPECT_THROW(Snapshot("channels.1"), std::future_error);
}

TEST_P(Uris, ThrowWhenTheirPortIsNotAPortNumber) {
    root = std::make_shared<configuration::node::Root>();
    root->Schema(
        {Schema("settings.web_port", 80, "a signed number"), Schema("settings.rtsp_port.number", "554", "a map")});
    EXPECT_THROW(Stream("channels.1"), std::future_error);
    EXPECT_THROW(Snapshot("channels.1"), std::future_error);
}

TEST_P(Uris, NeedTheirOwnPortOnly) {
    root = std::make_shared<configuration::node::Root>();
    root->Schema({Schema("settings.rtsp_port", std::uint16_t{554}, "port")});
    EXPECT_EQ(Stream("channels.1").status, 200);
    EXPECT_THROW(Snapshot("channels.1"), std::future_error);
}

TEST_P(Uris, AreRefusedWithoutCredentialsBeforeAnythingIsRead) {
    root = std::make_shared<configuration::node::Root>();
    for (auto const& sending : {Sending{.authenticated = false}, Sending{.password = "wrong"}}) {
        EXPECT_THAT(Stream("channels.1", sending), IsChallenge(authentication::Realm));
        EXPECT_THAT(Snapshot("channels.1", sending), IsChallenge(authentication::Realm));
    }
}

TEST_P(Uris, AreReturnedWithoutCredentialsWhileTheHostRequiresNone) {
    engine.SetEnabled(false);
    EXPECT_EQ(Uri(Stream("channels.1", {.authenticated = false})), "rtsp://" + address + ":8554/channels/1");
    EXPECT_EQ(Snapshot("channels.1", {.authenticated = false}).status, 200);
}

INSTANTIATE_TEST_SUITE_P(Of, Uris, testing::Values("trt:", "tr2:"), [](auto const& instance) {
    return instance.param == std::string("trt:") ? "Media" : "Media2";
});

// Elements around the URI, and request content that is ignored

class UriMessages : public DeviceFixture {};

constexpr char Stream[] = R"(
    <trt:GetStreamUriResponse><trt:MediaUri><tt:Uri>rtsp://@ADDRESS@:8554/channels/2</tt:Uri>
      <tt:InvalidAfterConnect>false</tt:InvalidAfterConnect><tt:InvalidAfterReboot>false</tt:InvalidAfterReboot>
      <tt:Timeout>PT0S</tt:Timeout></trt:MediaUri></trt:GetStreamUriResponse>)";

TEST_F(UriMessages, OfMediaStreamsNeverBecomeInvalid) {
    EXPECT_THAT(Ask("<trt:GetStreamUri><trt:ProfileToken>channels.2</trt:ProfileToken></trt:GetStreamUri>"),
                Answers(Stream));
}

TEST_F(UriMessages, OfMediaStreamsAreTheSameForEveryTransport) {
    for (std::string const stream : {"RTP-Unicast", "RTP-Multicast"})
        for (std::string const protocol : {"UDP", "TCP", "RTSP", "HTTP"})
            EXPECT_THAT(Ask("<trt:GetStreamUri><trt:StreamSetup><tt:Stream>" + stream +
                            "</tt:Stream><tt:Transport><tt:Protocol>" + protocol +
                            "</tt:Protocol><tt:Tunnel><tt:Protocol>TCP</tt:Protocol></tt:Tunnel></tt:Transport>"
                            "</trt:StreamSetup><trt:ProfileToken>channels.2</trt:ProfileToken></trt:GetStreamUri>"),
                        Answers(Stream))
                << stream << protocol;
}

TEST_F(UriMessages, OfMediaStreamsAreAlikeWhateverTheSetupSays) {
    for (std::string const setup :
         {"", "<tt:Stream/><tt:Transport/>", "<tt:Stream>Telepathy</tt:Stream>",
          "<tt:Stream>RTP-Unicast</tt:Stream><tt:Transport><tt:Protocol>carrier pigeon</tt:Protocol></tt:Transport>",
          "<tt:Transport><tt:Protocol/><tt:Tunnel><tt:Protocol/></tt:Tunnel></tt:Transport>", "<tt:Port>0</tt:Port>",
          "<tt:Port/>", "<tt:Port>70000</tt:Port>", "text"}) {
        auto const request = "<trt:GetStreamUri><trt:StreamSetup>" + setup +
                             "</trt:StreamSetup><trt:ProfileToken>channels.2</trt:ProfileToken></trt:GetStreamUri>";
        EXPECT_THAT(Ask(request), Answers(Stream)) << setup;
        EXPECT_THAT(AskAnonymously(request), IsChallenge(authentication::Realm)) << setup;
    }
}

TEST_F(UriMessages, OfMediaSnapshotsNeverBecomeInvalid) {
    EXPECT_THAT(Ask("<trt:GetSnapshotUri><trt:ProfileToken>channels.2</trt:ProfileToken></trt:GetSnapshotUri>"),
                Answers(R"(<trt:GetSnapshotUriResponse><trt:MediaUri>
                    <tt:Uri>http://@ADDRESS@:8080/snapshot/2/latest.jpeg</tt:Uri>
                    <tt:InvalidAfterConnect>false</tt:InvalidAfterConnect>
                    <tt:InvalidAfterReboot>false</tt:InvalidAfterReboot><tt:Timeout>PT0S</tt:Timeout>
                </trt:MediaUri></trt:GetSnapshotUriResponse>)"));
}

TEST_F(UriMessages, OfMedia2StreamsContainOnlyTheUriForEveryProtocol) {
    for (std::string const protocol : {"RtspUnicast", "RtspMulticast", "RTSP", "RtspOverHttp", "", "anything"})
        EXPECT_THAT(Ask("<tr2:GetStreamUri><tr2:Protocol>" + protocol +
                        "</tr2:Protocol><tr2:ProfileToken>channels.1</tr2:ProfileToken></tr2:GetStreamUri>"),
                    Answers("<tr2:GetStreamUriResponse><tr2:Uri>rtsp://@ADDRESS@:8554/channels/1</tr2:Uri>"
                            "</tr2:GetStreamUriResponse>"))
            << protocol;
}

TEST_F(UriMessages, OfMedia2SnapshotsContainOnlyTheUri) {
    EXPECT_THAT(Ask("<tr2:GetSnapshotUri><tr2:ProfileToken>channels.1</tr2:ProfileToken></tr2:GetSnapshotUri>"),
                Answers("<tr2:GetSnapshotUriResponse><tr2:Uri>http://@ADDRESS@:8080/snapshot/1/latest.jpeg</tr2:Uri>"
                        "</tr2:GetSnapshotUriResponse>"));
}

} // namespace
} // namespace zarn::test
