#include "host/video/rtsp/connection.h"
#include "support/eventually.h"
#include "unit/host/video/video_test.h"

#include <zarn/authentication/ha1.h>
#include <zarn/authentication/realm.h>

#include <boost/asio/connect.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/write.hpp>
#include <gmock/gmock.h>
#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <thread>

namespace zarn::host::video {
namespace {

using namespace std::chrono_literals;
using rtsp::Connection;
using testing::HasSubstr;
using testing::StartsWith;

/// A raw TCP connection to the RTSP port.
class Peer {
public:
    explicit Peer(std::uint16_t port) : socket(context) {
        socket.connect({boost::asio::ip::address_v4::loopback(), port});
    }

    /// Sends until the connection blocks; false when it is closed.
    bool Send(std::string_view text) {
        boost::system::error_code error;
        boost::asio::write(socket, boost::asio::buffer(text.data(), text.size()), error);
        return !error;
    }

    /// Everything received until the connection is closed or becomes idle.
    std::string Read(std::chrono::milliseconds patience = 200ms) {
        std::string text;
        while (Poll(patience)) {
            std::array<char, 4096> part{};
            boost::system::error_code error;
            auto const size = socket.read_some(boost::asio::buffer(part), error);
            if (error) break;
            text.append(part.data(), size);
        }
        return text;
    }

    /// One response without a body; may be incomplete when no more data arrives.
    std::string ReadAnswer() {
        std::string text;
        while (!text.ends_with("\r\n\r\n") && Poll(Deadline)) {
            char character = 0;
            boost::system::error_code error;
            if (socket.read_some(boost::asio::buffer(&character, 1), error) == 0) break;
            text += character;
        }
        return text;
    }

    /// True if the server closes the connection within the time.
    bool IsClosed(std::chrono::milliseconds patience) {
        std::array<char, 4096> part{};
        boost::system::error_code error;
        return Poll(patience) && (socket.read_some(boost::asio::buffer(part), error), error);
    }

    /// Aborts a send in progress on another thread.
    void ShutDown() { shutdown(socket.native_handle(), SHUT_RDWR); }

private:
    bool Poll(std::chrono::milliseconds patience) {
        pollfd waiting{socket.native_handle(), POLLIN, 0};
        return poll(&waiting, 1, static_cast<int>(patience.count())) > 0;
    }

    boost::asio::io_context context;
    boost::asio::ip::tcp::socket socket;
};

class EngineLimits : public VideoTest {
protected:
    std::unique_ptr<Peer> Connect() { return std::make_unique<Peer>(engine->GetPort()); }

    bool CanBeViewed() {
        Viewer viewer(GetUrl("1"));
        return viewer.Next().has_value();
    }

    void StartChannel() {
        engine->SetChannels({From("1", Small)});
        ASSERT_TRUE(WaitForState("1", ChannelState::Running));
    }
};

constexpr char Options[] = "OPTIONS * RTSP/1.0\r\nCSeq: 1\r\n\r\n";

TEST_F(EngineLimits, RefuseConnectionsAboveTheMaximumUntilOneCloses) {
    StartChannel();
    auto const limits = RtspSettings().limits;
    auto const most = std::min(limits.connections, limits.connectionsPerAddress);
    std::vector<std::unique_ptr<Peer>> peers;
    for (std::size_t count = 0; count < most; ++count) {
        peers.push_back(Connect());
        ASSERT_TRUE(peers.back()->Send(Options));
        ASSERT_THAT(peers.back()->ReadAnswer(), StartsWith("RTSP/1.0 200"));
    }
    EXPECT_TRUE(Connect()->IsClosed(Deadline));
    peers.pop_back();
    EXPECT_TRUE(test::Eventually([&] {
        auto const peer = Connect();
        return peer->Send(Options) && !peer->Read().empty();
    }));
    peers.clear();
    EXPECT_TRUE(test::Eventually([&] { return CanBeViewed(); }));
}

TEST_F(EngineLimits, RefuseConnectionsAboveTheConfiguredLimit) {
    engine->SetLimits({.connections = 3});
    std::vector<std::unique_ptr<Peer>> peers;
    for (int count = 0; count < 3; ++count) {
        peers.push_back(Connect());
        ASSERT_TRUE(peers.back()->Send(Options));
        ASSERT_THAT(peers.back()->ReadAnswer(), StartsWith("RTSP/1.0 200"));
    }
    EXPECT_TRUE(Connect()->IsClosed(Deadline));
}

TEST_F(EngineLimits, RefuseConnectionsAboveTheLimitPerAddress) {
    engine->SetLimits({.connectionsPerAddress = 1});
    auto first = Connect();
    ASSERT_TRUE(first->Send(Options));
    EXPECT_THAT(first->ReadAnswer(), StartsWith("RTSP/1.0 200"));
    EXPECT_TRUE(Connect()->IsClosed(Deadline));
    ASSERT_TRUE(first->Send(Options));
    EXPECT_THAT(first->ReadAnswer(), StartsWith("RTSP/1.0 200"));
    first.reset();
    EXPECT_TRUE(test::Eventually([&] {
        auto const peer = Connect();
        return peer->Send(Options) && !peer->Read().empty();
    }));
}

TEST_F(EngineLimits, CloseIdleConnectionsButNoViewers) {
    StartChannel();
    Viewer overTcp(GetUrl("1"), {.decode = false});
    Viewer overUdp(GetUrl("1"), {.transport = "udp", .decode = false});
    auto const begin = std::chrono::steady_clock::now();
    auto const idle = Connect();
    EXPECT_TRUE(idle->IsClosed(Deadline));
    EXPECT_GE(std::chrono::steady_clock::now() - begin, Connection::Patience);
    while (std::chrono::steady_clock::now() < begin + Connection::Patience + 3s) {
        ASSERT_TRUE(overTcp.Next()) << overTcp.GetFailure();
        ASSERT_TRUE(overUdp.Next()) << overUdp.GetFailure();
    }
}

TEST_F(EngineLimits, CloseConnectionsThatSendTooMuch) {
    auto const begin = std::chrono::steady_clock::now();
    auto const peer = Connect();
    // Packets are of no other effect.
    auto const packet = std::string("$\x01\x04\x00", 4) + std::string(1024, 'a');
    std::jthread const sender([&] {
        while (peer->Send(packet)) {
        }
    });
    EXPECT_TRUE(peer->IsClosed(Connection::Patience));
    EXPECT_LT(std::chrono::steady_clock::now() - begin, Connection::Patience);
    peer->ShutDown();
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
    peer->ShutDown();
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
        EXPECT_THAT(peer->Read(50ms), testing::Not(HasSubstr(" 200 OK"))) << text;
    }
    EXPECT_TRUE(CanBeViewed());
}

TEST_F(EngineLimits, RefuseTheRightPasswordAfterTooManyGuesses) {
    engine->SetAuthentication(true, authentication::MakeHa1("admin", authentication::Realm, "right"));
    StartChannel();
    auto const describe = "DESCRIBE " + GetUrl("1") + " RTSP/1.0\r\nCSeq: 1\r\n";
    auto const peer = Connect();
    for (std::size_t guess = 0; guess <= AccessSettings().failedLoginsPerMinute; ++guess) {
        ASSERT_TRUE(peer->Send(describe +
                               "Authorization: Digest username=\"admin\", realm=\"x\", nonce=\"x\", uri=\"x\", "
                               "response=\"00000000000000000000000000000000\"\r\n\r\n"));
        ASSERT_THAT(peer->ReadAnswer(), StartsWith("RTSP/1.0 401"));
    }
    Viewer viewer(GetUrl("1"), {.user = "admin", .password = "right"});
    EXPECT_FALSE(viewer.Next());
    EXPECT_THAT(viewer.GetFailure(), HasSubstr("Unauthorized"));
}

} // namespace
} // namespace zarn::host::video
