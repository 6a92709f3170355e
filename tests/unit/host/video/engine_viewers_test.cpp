#include "host/video/rtsp/connection.h"
#include "host/video/rtsp/worker.h"
#include "support/eventually.h"
#include "support/random_failure.h"
#include "support/resource_use.h"
#include "unit/host/video/video_test.h"

#include <boost/asio/buffer.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/ip/udp.hpp>
#include <boost/asio/read.hpp>
#include <boost/asio/write.hpp>
#include <gmock/gmock.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace zarn::host::video {
namespace {

using namespace std::chrono_literals;
using boost::asio::ip::tcp;
using boost::asio::ip::udp;
using testing::HasSubstr;
using testing::StartsWith;

constexpr char Interleaved[] = "RTP/AVP/TCP;unicast;interleaved=0-1";

/// The request that opens the sending half of an HTTP tunnel.
constexpr char Post[] = "POST / HTTP/1.0\r\nx-sessioncookie: a\r\n\r\n";

/// "OPTIONS * RTSP/1.0\r\nCSeq: 7\r\n\r\n" in Base64.
constexpr char EncodedOptions[] = "T1BUSU9OUyAqIFJUU1AvMS4wDQpDU2VxOiA3DQoNCg==";

/// An RTP or RTCP packet, with the channel that it came on.
struct Received {
    int channel = 0;
    std::string bytes;

    std::uint32_t Read(std::size_t at, std::size_t size) const {
        std::uint32_t number = 0;
        for (std::size_t index = 0; index < size; ++index)
            number = number << 8 | static_cast<unsigned char>(bytes.at(at + index));
        return number;
    }
};

/// An RTSP client that sends and receives byte by byte what a test wants.
class Client {
public:
    Client(std::uint16_t port, std::string url, char const* from = "127.0.0.1", int receiveBuffer = 0)
        : socket(context), url(std::move(url)) {
        socket.open(tcp::v4());
        if (receiveBuffer > 0) socket.set_option(boost::asio::socket_base::receive_buffer_size(receiveBuffer));
        socket.bind({boost::asio::ip::make_address(from), 0});
        socket.connect({boost::asio::ip::address_v4::loopback(), port});
        timeval const limit{std::chrono::seconds(Deadline).count(), 0};
        setsockopt(socket.native_handle(), SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof(limit));
    }

    void Send(std::string_view text) { boost::asio::write(socket, boost::asio::buffer(text.data(), text.size())); }

    /// One response; packets before it are skipped. Empty when the connection ends.
    std::string ReadAnswer() {
        for (;;) {
            auto text = ReadBytes(1);
            if (text == "$") {
                ReadPacketAfterMark();
                continue;
            }
            while (!text.empty() && !text.ends_with("\r\n\r\n")) {
                auto const next = ReadBytes(1);
                if (next.empty()) return {};
                text += next;
            }
            return text;
        }
    }

    /// Sends a request for the stream, or a part of it, and returns the response.
    std::string Ask(std::string const& method, std::string const& fields = {}, std::string const& part = {}) {
        Send(method + " " + url + part + " RTSP/1.0\r\nCSeq: " + std::to_string(++sequence) + "\r\n" + fields + "\r\n");
        return ReadAnswer();
    }

    /// Sets the stream up and keeps the session's identifier.
    std::string SetUp(std::string const& transport) {
        auto const answer = Ask("SETUP", "Transport: " + transport + "\r\n", "/stream=0");
        session = GetField(answer, "Session");
        session = session.substr(0, session.find(';'));
        return answer;
    }

    std::string AskInSession(std::string const& method) { return Ask(method, "Session: " + session + "\r\n"); }

    /// Plays over the connection.
    std::string Play() {
        SetUp(Interleaved);
        return AskInSession("PLAY");
    }

    /// The next packet; none when the connection ends.
    std::optional<Received> ReadPacket() {
        if (ReadBytes(1) != "$") return std::nullopt;
        return ReadPacketAfterMark();
    }

    /// Whether the server ends the connection; what arrives before is skipped.
    bool IsEnded() {
        std::array<char, 4096> part{};
        boost::system::error_code error;
        while (!error) socket.read_some(boost::asio::buffer(part), error);
        return error == boost::asio::error::eof || error == boost::asio::error::connection_reset;
    }

    static std::string GetField(std::string const& answer, std::string const& name) {
        auto const begin = answer.find("\r\n" + name + ": ");
        if (begin == std::string::npos) return {};
        auto const value = begin + name.size() + 4;
        return answer.substr(value, answer.find("\r\n", value) - value);
    }

    std::string session;

private:
    std::string ReadBytes(std::size_t count) {
        std::string bytes(count, '\0');
        boost::system::error_code error;
        bytes.resize(boost::asio::read(socket, boost::asio::buffer(bytes), error));
        return error ? std::string() : bytes;
    }

    std::optional<Received> ReadPacketAfterMark() {
        auto const head = ReadBytes(3);
        if (head.empty()) return std::nullopt;
        Received packet{static_cast<unsigned char>(head[0]), {}};
        packet.bytes =
            ReadBytes(static_cast<unsigned char>(head[1]) * std::size_t{256} + static_cast<unsigned char>(head[2]));
        return packet;
    }

    boost::asio::io_context context;
    tcp::socket socket;
    std::string const url;
    int sequence = 0;
};

class EngineViewers : public VideoTest {
protected:
    EngineViewers() {
        engine->SetChannels({From("1", Small)});
        EXPECT_TRUE(WaitForState("1", ChannelState::Running));
    }

    std::unique_ptr<Client> Connect() { return std::make_unique<Client>(engine->GetPort(), GetUrl("1")); }

    /// A viewer that plays over its connection.
    std::unique_ptr<Client> Play() {
        auto viewer = Connect();
        EXPECT_THAT(viewer->Play(), StartsWith("RTSP/1.0 200"));
        return viewer;
    }

    /// The half of a tunnel that receives.
    std::unique_ptr<Client> OpenTunnel() {
        auto half = Connect();
        half->Send("GET / HTTP/1.0\r\nx-sessioncookie: a\r\n\r\n");
        EXPECT_THAT(half->ReadAnswer(), StartsWith("HTTP/1.0 200"));
        return half;
    }
};

TEST_F(EngineViewers, NeedNoThreadsOfTheirOwn) {
    constexpr std::size_t Count = 200;
    std::vector<std::unique_ptr<Client>> viewers;
    viewers.push_back(Play());
    ASSERT_TRUE(viewers.front()->ReadPacket());
    auto const threads = test::ReadResourceUse(getpid()).threads;
    while (viewers.size() < Count) viewers.push_back(Play());
    for (auto const& viewer : viewers) {
        auto const packet = viewer->ReadPacket();
        ASSERT_TRUE(packet);
        EXPECT_EQ(packet->channel, 0);
    }
    // Threads that opened the source may have ended meanwhile.
    EXPECT_LE(test::ReadResourceUse(getpid()).threads, threads);
}

TEST_F(EngineViewers, GetNumberedPacketsOfTheirOwnSource) {
    auto const viewer = Connect();
    auto const source = viewer->SetUp(Interleaved);
    auto const info = Client::GetField(viewer->AskInSession("PLAY"), "RTP-Info");
    std::optional<std::uint32_t> next;
    for (int count = 0; count < 30;) {
        auto const packet = viewer->ReadPacket();
        ASSERT_TRUE(packet);
        if (packet->channel != 0) continue;
        ++count;
        std::array<char, 9> text{};
        std::snprintf(text.data(), text.size(), "%08X", packet->Read(8, 4));
        EXPECT_THAT(source, HasSubstr(std::string("ssrc=") + text.data()));
        if (!next) {
            EXPECT_THAT(info, HasSubstr(";seq=" + std::to_string(packet->Read(2, 2)) + ";"));
            EXPECT_THAT(info, HasSubstr(";rtptime=" + std::to_string(packet->Read(4, 4))));
        } else {
            EXPECT_EQ(packet->Read(2, 2), *next);
        }
        next = (packet->Read(2, 2) + 1) & 0xFFFF;
    }
}

TEST_F(EngineViewers, HearOfTimeAtTheBeginningAndOfTheEnd) {
    auto const viewer = Play();
    auto packet = viewer->ReadPacket();
    while (packet && packet->channel != 1) packet = viewer->ReadPacket();
    ASSERT_TRUE(packet);
    EXPECT_EQ(packet->Read(0, 2), 0x80C8U) << "a sender report";
    engine->SetChannels({});
    bool hasGoodbye = false;
    while ((packet = viewer->ReadPacket()))
        hasGoodbye = hasGoodbye || (packet->channel == 1 && packet->bytes.find("\x81\xCB") != std::string::npos);
    EXPECT_TRUE(hasGoodbye);
}

TEST_F(EngineViewers, GetTheNewestKeyFrameAfterAPause) {
    auto const viewer = Play();
    ASSERT_TRUE(viewer->ReadPacket());
    EXPECT_THAT(viewer->AskInSession("PAUSE"), StartsWith("RTSP/1.0 200"));
    EXPECT_THAT(viewer->AskInSession("PAUSE"), StartsWith("RTSP/1.0 455"));
    EXPECT_THAT(viewer->AskInSession("PLAY"), StartsWith("RTSP/1.0 200"));
    EXPECT_TRUE(viewer->ReadPacket());
}

TEST_F(EngineViewers, MaySendManyRequestsAtOnce) {
    auto const client = Connect();
    client->Send("OPTIONS * RTSP/1.0\r\nCSeq: 1\r\n\r\nGET_PARAMETER " + GetUrl("1") + " RTSP/1.0\r\nCSeq: 2\r\n\r\n$" +
                 std::string("\x01\x00\x02zz", 5) + "FOO * RTSP/1.0\r\nCSeq: 3\r\n\r\n");
    for (auto const* begin : {"RTSP/1.0 200 OK\r\nCSeq: 1\r\n", "RTSP/1.0 200 OK\r\nCSeq: 2\r\n",
                              "RTSP/1.0 501 Not Implemented\r\nCSeq: 3\r\n"}) {
        EXPECT_THAT(client->ReadAnswer(), StartsWith(begin));
    }
}

TEST_F(EngineViewers, AreAnsweredAsRtspWants) {
    auto const client = Connect();

    struct Row {
        char const* method;
        char const* fields;
        char const* part;
        char const* status;
    };

    for (auto const& row : std::vector<Row>{
             {"DESCRIBE", "Require: implicit-play\r\n", "", "551"},
             {"DESCRIBE", "", "/stream=0", "404"},
             {"SETUP", "Transport: RTP/AVP;multicast\r\n", "/stream=0", "461"},
             {"SETUP", "", "/stream=0", "461"},
             {"SETUP", "Transport: RTP/AVP/TCP\r\n", "/stream=1", "404"},
             {"SETUP", "Session: none\r\nTransport: RTP/AVP/TCP\r\n", "/stream=0", "454"},
             {"PLAY", "", "", "454"},
             {"PLAY", "Session: none\r\n", "", "454"},
             {"PAUSE", "Session: A\r\n", "", "454"},
             {"TEARDOWN", "Session: B\r\n", "", "454"},
             {"GET_PARAMETER", "Session: B\r\n", "", "454"},
             {"ANNOUNCE", "", "", "501"},
         }) {
        EXPECT_THAT(client->Ask(row.method, row.fields, row.part), StartsWith(std::string("RTSP/1.0 ") + row.status))
            << row.method << row.fields << row.part;
    }
    client->Send("OPTIONS * RTSP/2.0\r\nCSeq: 9\r\n\r\n");
    EXPECT_THAT(client->ReadAnswer(), StartsWith("RTSP/1.0 505"));
    EXPECT_THAT(client->Ask("OPTIONS"), HasSubstr("\r\nPublic: OPTIONS, DESCRIBE, GET_PARAMETER, PAUSE, PLAY, SETUP, "
                                                  "SET_PARAMETER, TEARDOWN\r\n"));
    EXPECT_THAT(client->SetUp(Interleaved), HasSubstr(";timeout=60\r\n"));
}

TEST_F(EngineViewers, CannotControlASessionOfAnotherConnection) {
    auto const viewer = Connect();
    viewer->SetUp(Interleaved);
    for (int count = 0; count < 2; ++count) { // one connection for each worker
        auto const other = Connect();
        other->session = viewer->session;
        for (auto const* method : {"PLAY", "TEARDOWN", "GET_PARAMETER"})
            EXPECT_THAT(other->AskInSession(method), StartsWith("RTSP/1.0 454")) << method;
    }
    EXPECT_THAT(viewer->AskInSession("PLAY"), StartsWith("RTSP/1.0 200"));
}

TEST_F(EngineViewers, GoOnOverUdpWithoutTheirConnectionAndComeBackOnAnother) {
    boost::asio::io_context context;
    udp::socket media(context, {boost::asio::ip::address_v4::loopback(), 0});
    auto const receives = [&media] {
        pollfd waiting{media.native_handle(), POLLIN, 0};
        std::array<char, 2048> packet{};
        return poll(&waiting, 1, static_cast<int>(std::chrono::milliseconds(Deadline).count())) > 0 &&
               media.receive(boost::asio::buffer(packet)) > 12;
    };
    auto viewer = Connect();
    EXPECT_THAT(viewer->SetUp("RTP/AVP;unicast;client_port=" + std::to_string(media.local_endpoint().port())),
                HasSubstr(";server_port="));
    EXPECT_THAT(viewer->AskInSession("PLAY"), StartsWith("RTSP/1.0 200"));
    ASSERT_TRUE(receives());
    auto const session = viewer->session;
    viewer.reset();
    for (int count = 0; count < 20; ++count) ASSERT_TRUE(receives());
    for (int count = 0; count < 2; ++count) { // one connection for each worker
        auto const back = Connect();
        back->session = session;
        EXPECT_THAT(back->AskInSession("GET_PARAMETER"), StartsWith("RTSP/1.0 200"));
        EXPECT_THAT(back->AskInSession("PAUSE"), StartsWith("RTSP/1.0 200"));
        EXPECT_THAT(back->AskInSession("PLAY"), StartsWith("RTSP/1.0 200"));
        EXPECT_TRUE(receives());
    }
    auto const last = Connect();
    last->session = session;
    EXPECT_THAT(last->AskInSession("TEARDOWN"), StartsWith("RTSP/1.0 200"));
    EXPECT_THAT(last->AskInSession("GET_PARAMETER"), StartsWith("RTSP/1.0 454"));
}

TEST_F(EngineViewers, MayUseATunnelThroughHttp) {
    for (int count = 0; count < 2; ++count) { // the halves are accepted by either worker first
        auto const other = Connect();
        auto url = GetUrl("1");
        Viewer viewer(url.insert(4, 1, 'h'), {.transport = "tcp+http"});
        EXPECT_TRUE(viewer.Next()) << viewer.GetFailure();
        EXPECT_TRUE(viewer.Next()) << viewer.GetFailure();
    }
}

TEST_F(EngineViewers, GetNoTunnelWithoutItsOtherHalf) {
    auto const post = Connect();
    post->Send("POST /channels/1 HTTP/1.0\r\nx-sessioncookie: none\r\n\r\nT1BU");
    EXPECT_EQ(post->ReadAnswer(), "");
    auto const get = Connect();
    get->Send("GET /channels/1 HTTP/1.0\r\n\r\n");
    EXPECT_THAT(get->ReadAnswer(), StartsWith("HTTP/1.0 400"));
    auto const first = OpenTunnel();
    auto const second = Connect();
    second->Send("GET / HTTP/1.0\r\nx-sessioncookie: a\r\n\r\n");
    EXPECT_THAT(second->ReadAnswer(), StartsWith("HTTP/1.0 400")) << "one client cannot take another's tunnel";
}

TEST_F(EngineViewers, AreEndedWhenTheirConnectionIsToBecomeAHalfOfATunnel) {
    auto const viewer = Play();
    auto const tunnel = OpenTunnel();
    viewer->Send(Post);
    EXPECT_TRUE(viewer->IsEnded());
    // Until its worker has forgotten the connection, too.
    auto const end = std::chrono::steady_clock::now() + 2 * rtsp::Worker::SweepInterval;
    auto const other = Play();
    while (std::chrono::steady_clock::now() < end) ASSERT_TRUE(other->ReadPacket());
}

TEST_F(EngineViewers, MayReplaceTheHalfOfATunnelThatSendsRequests) {
    auto const get = OpenTunnel();
    std::unique_ptr<Client> former;
    for (int count = 0; count < 4; ++count) { // the halves are accepted by either worker
        auto post = Connect();
        post->Send(std::string(Post) + EncodedOptions);
        EXPECT_THAT(get->ReadAnswer(), StartsWith("RTSP/1.0 200 OK\r\nCSeq: 7\r\n"));
        if (former) {
            EXPECT_TRUE(former->IsEnded());
        }
        post->Send(EncodedOptions);
        EXPECT_THAT(get->ReadAnswer(), StartsWith("RTSP/1.0 200 OK\r\nCSeq: 7\r\n"));
        former = count == 1 ? nullptr : std::move(post); // one ends before the next begins
    }
}

TEST_F(EngineViewers, GetNoTunnelWhoseHalvesComeFromDifferentAddresses) {
    auto const get = OpenTunnel();
    Client stranger(engine->GetPort(), GetUrl("1"), "127.0.0.2");
    stranger.Send(Post);
    EXPECT_TRUE(stranger.IsEnded());
    auto const post = Connect();
    post->Send(std::string(Post) + EncodedOptions);
    EXPECT_THAT(get->ReadAnswer(), StartsWith("RTSP/1.0 200"));
}

TEST_F(EngineViewers, MaySetUpSessionsInPlaceOfThoseThatTheyEnded) {
    auto const viewer = Connect();
    for (std::size_t count = 0; count < 2 * rtsp::Connection::MaximumSessions; ++count) {
        ASSERT_THAT(viewer->SetUp(Interleaved), StartsWith("RTSP/1.0 200")) << count;
        ASSERT_THAT(viewer->AskInSession("TEARDOWN"), StartsWith("RTSP/1.0 200")) << count;
    }
}

TEST_F(EngineViewers, KeepTheirConnectionWhenOneOfTheirStreamsEnds) {
    engine->SetChannels({From("1", Small), From("2", Small)});
    ASSERT_TRUE(WaitForState("2", ChannelState::Running));
    auto const viewer = Play();
    auto const setUp = "SETUP " + GetUrl("2") + "/stream=0 RTSP/1.0\r\nCSeq: 8\r\nTransport: RTP/AVP/TCP\r\n\r\n";
    viewer->Send(setUp);
    ASSERT_THAT(viewer->ReadAnswer(), StartsWith("RTSP/1.0 200"));
    engine->SetChannels({From("1", Small)});
    EXPECT_TRUE(test::Eventually([&] {
        viewer->Send("SETUP " + GetUrl("2") + "/stream=0 RTSP/1.0\r\nCSeq: 8\r\n\r\n");
        return viewer->ReadAnswer().starts_with("RTSP/1.0 404");
    }));
    auto const end = std::chrono::steady_clock::now() + 2 * rtsp::Session::Farewell;
    while (std::chrono::steady_clock::now() < end) ASSERT_TRUE(viewer->ReadPacket());
}

TEST_F(EngineViewers, KeepTheirChannelsWhenTheySetUpATrackAgain) {
    auto const viewer = Connect();
    viewer->SetUp("RTP/AVP/TCP;unicast;interleaved=4-5");
    auto const again = viewer->Ask(
        "SETUP", "Session: " + viewer->session + "\r\nTransport: RTP/AVP/TCP;interleaved=4-5\r\n", "/stream=0");
    EXPECT_THAT(again, HasSubstr("interleaved=4-5;"));
}

TEST_F(EngineViewers, AreEndedWhenARequestFails) {
    auto const viewer = Play();
    auto const other = Play();
    {
        test::RandomFailure const failure;
        viewer->Send("SETUP " + GetUrl("1") + "/stream=0 RTSP/1.0\r\nCSeq: 9\r\nTransport: RTP/AVP/TCP\r\n\r\n");
        EXPECT_TRUE(viewer->IsEnded());
    }
    EXPECT_TRUE(other->ReadPacket());
}

TEST_F(EngineViewers, AreNotHeldUpByOneThatDoesNotRead) {
    // Noise of some Mbit/s fills the smallest buffers at once.
    engine->SetChannels({From("1", "test:snow?width=640&height=480&rate=25")});
    ASSERT_TRUE(WaitForState("1", ChannelState::Running));
    std::vector<std::unique_ptr<Client>> deaf;
    for (int count = 0; count < 2; ++count) { // one for each worker
        deaf.push_back(std::make_unique<Client>(engine->GetPort(), GetUrl("1"), "127.0.0.1", 4096));
        ASSERT_THAT(deaf.back()->Play(), StartsWith("RTSP/1.0 200"));
    }
    for (int count = 0; count < 2; ++count) {
        Viewer viewer(GetUrl("1"), {.decode = false});
        for (int picture = 0; picture < 50; ++picture) ASSERT_TRUE(viewer.Next()) << viewer.GetFailure();
    }
}

} // namespace
} // namespace zarn::host::video
