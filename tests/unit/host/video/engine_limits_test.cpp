#include "host/video/rtsp/connection.h"
#include "support/eventually.h"
#include "support/raw_connection.h"
#include "unit/host/video/video_test.h"

#include <zarn/authentication/ha1.h>
#include <zarn/authentication/realm.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace zarn::host::video {
namespace {

using namespace std::chrono_literals;
using rtsp::Connection;
using test::RawConnection;
using testing::HasSubstr;

constexpr char Options[] = "OPTIONS * RTSP/1.0\r\nCSeq: 1\r\n\r\n";

class EngineLimits : public VideoTest {
protected:
    std::unique_ptr<RawConnection> Connect() { return std::make_unique<RawConnection>(engine->GetPort(), Deadline); }

    /// Opens connections with a session each, so that the server does not close them as idle.
    std::vector<std::unique_ptr<RawConnection>> ConnectViewers(std::size_t count) {
        std::vector<std::unique_ptr<RawConnection>> viewers;
        while (viewers.size() < count) {
            viewers.push_back(Connect());
            EXPECT_EQ(viewers.back()->Exchange(MakeSetUp()).status, 200U);
        }
        return viewers;
    }

    /// Whether a new connection is served.
    bool IsServed() {
        auto const connection = Connect();
        connection->Send(Options);
        return connection->ReadIfAny().has_value();
    }

    std::string MakeSetUp() const {
        return "SETUP " + GetUrl("1") + " RTSP/1.0\r\nCSeq: 1\r\nTransport: RTP/AVP/TCP\r\n\r\n";
    }

    bool CanBeViewed() {
        Viewer viewer(GetUrl("1"));
        return viewer.Next().has_value();
    }

    void StartChannel() {
        engine->SetChannels({From("1", Small)});
        ASSERT_TRUE(WaitForState("1", ChannelState::Running));
    }
};

TEST_F(EngineLimits, RefuseConnectionsAboveTheMaximumUntilOneCloses) {
    StartChannel();
    auto const limits = RtspSettings().limits;
    auto viewers = ConnectViewers(std::min(limits.connections, limits.connectionsPerAddress));
    EXPECT_FALSE(IsServed());
    viewers.pop_back();
    EXPECT_TRUE(test::Eventually([&] { return IsServed(); }));
    viewers.clear();
    EXPECT_TRUE(test::Eventually([&] { return CanBeViewed(); }));
}

TEST_F(EngineLimits, RefuseConnectionsAboveTheConfiguredLimit) {
    StartChannel();
    engine->SetLimits({.connections = 3});
    auto const viewers = ConnectViewers(3);
    EXPECT_FALSE(IsServed());
}

TEST_F(EngineLimits, RefuseConnectionsAboveTheLimitPerAddress) {
    StartChannel();
    engine->SetLimits({.connectionsPerAddress = 1});
    auto viewers = ConnectViewers(1);
    EXPECT_FALSE(IsServed());
    EXPECT_EQ(viewers.front()->Exchange(Options).status, 200U);
    viewers.clear();
    EXPECT_TRUE(test::Eventually([&] { return IsServed(); }));
}

TEST_F(EngineLimits, CloseIdleConnectionsButNoViewers) {
    StartChannel();
    Viewer overTcp(GetUrl("1"), {.decode = false});
    Viewer overUdp(GetUrl("1"), {.transport = "udp", .decode = false});
    auto const begin = std::chrono::steady_clock::now();
    auto const idle = Connect();
    EXPECT_TRUE(idle->IsClosedWithin(Deadline));
    EXPECT_GE(std::chrono::steady_clock::now() - begin, Connection::Patience);
    while (std::chrono::steady_clock::now() < begin + Connection::Patience + 3s) {
        ASSERT_TRUE(overTcp.Next()) << overTcp.GetFailure();
        ASSERT_TRUE(overUdp.Next()) << overUdp.GetFailure();
    }
}

TEST_F(EngineLimits, CloseConnectionsThatSendTooMuch) {
    StartChannel();
    auto const peer = std::move(ConnectViewers(1).front());
    // Packets are of no other effect.
    auto const packet = std::string("$\x01\x04\x00", 4) + std::string(1024, 'a');
    std::jthread const sender([&] {
        while (peer->Send(packet)) {
        }
    });
    EXPECT_TRUE(peer->IsClosedWithin(Deadline));
    peer->EndSending();
}

TEST_F(EngineLimits, ShieldOthersFromAPeerThatFloods) {
    StartChannel();
    auto const peer = Connect();
    std::jthread const sender([&peer] {
        while (peer->Send(std::string(65536, 'a'))) {
        }
    });
    EXPECT_TRUE(CanBeViewed());
    auto const begin = std::chrono::steady_clock::now();
    engine->Stop();
    EXPECT_LT(std::chrono::steady_clock::now() - begin, StopLimit);
    peer->EndSending();
}

TEST_F(EngineLimits, SurviveInvalidRtsp) {
    StartChannel();
    for (std::string const text :
         {"\r\n\r\n\r\n", "GET / HTTP/1.1\r\n\r\n", "DESCRIBE\r\n\r\n", "DESCRIBE rtsp:// RTSP/1.0\r\nCSeq: 1\r\n\r\n",
          "DESCRIBE rtsp://a/channels/1 RTSP/9.9\r\nCSeq: 1\r\n\r\n",
          "SETUP * RTSP/1.0\r\nCSeq: x\r\nTransport: \r\n\r\n",
          "PLAY rtsp://a/channels/1 RTSP/1.0\r\nCSeq: 1\r\nSession: none\r\n\r\n",
          "ANNOUNCE rtsp://a/channels/1 RTSP/1.0\r\nCSeq: 1\r\nContent-Length: 4294967295\r\n\r\n",
          "SETUP rtsp://a/channels/1/stream=9 RTSP/1.0\r\nCSeq: 1\r\nTransport: "
          "RTP/AVP;unicast;client_port=0-99999\r\n\r\n",
          "$\x7f\xff\xff garbage", "\x16\x03\x01\x02\x00\x01\x00\x01\xfc\x03\x03"}) {
        auto const peer = Connect();
        peer->Send(text);
        peer->EndSending();
        EXPECT_THAT(peer->ReadAll(), testing::Not(HasSubstr(" 200 OK"))) << text;
    }
    EXPECT_TRUE(CanBeViewed());
}

TEST_F(EngineLimits, RefuseTheRightPasswordAfterTooManyGuesses) {
    engine->SetAuthentication(true, authentication::MakeHa1("admin", authentication::Realm, "right"));
    StartChannel();
    auto const describe = "DESCRIBE " + GetUrl("1") + " RTSP/1.0\r\nCSeq: 1\r\n";
    auto const peer = Connect();
    for (std::size_t guess = 0; guess <= AccessSettings().failedLoginsPerMinute; ++guess) {
        auto const answer =
            peer->Exchange(describe + "Authorization: Digest username=\"admin\", realm=\"x\", nonce=\"x\", uri=\"x\", "
                                      "response=\"00000000000000000000000000000000\"\r\n\r\n");
        ASSERT_EQ(answer.status, 401U);
    }
    Viewer viewer(GetUrl("1"), {.user = "admin", .password = "right"});
    EXPECT_FALSE(viewer.Next());
    EXPECT_THAT(viewer.GetFailure(), HasSubstr("Unauthorized"));
}

} // namespace
} // namespace zarn::host::video
