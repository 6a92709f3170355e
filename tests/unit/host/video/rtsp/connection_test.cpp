#include "host/video/rtsp/connection.h"
#include "support/eventually.h"
#include "support/random_failure.h"
#include "unit/host/video/rtsp/served_stream.h"

#include <boost/asio/buffer.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/ip/udp.hpp>
#include <boost/asio/write.hpp>
#include <gmock/gmock.h>

#include <array>
#include <memory>
#include <string>
#include <string_view>

namespace zarn::host::video::rtsp {
namespace {

using namespace std::chrono_literals;
using boost::asio::ip::tcp;
using boost::asio::ip::udp;
using testing::HasSubstr;
using testing::StartsWith;

constexpr char OverTcp[] = "Transport: RTP/AVP/TCP\r\n";

/// A connection and its client, which share the test's thread.
class Pair {
public:
    Pair(std::shared_ptr<Site> const& site, Worker& worker) : worker(worker) {
        tcp::acceptor acceptor(context, {boost::asio::ip::address_v4::loopback(), 0});
        client.open(tcp::v4());
        // So that the system holds little of what the client does not read.
        client.set_option(boost::asio::socket_base::receive_buffer_size(32 * 1024));
        client.set_option(boost::asio::socket_base::send_buffer_size(int{Connection::MaximumReceived}));
        client.connect(acceptor.local_endpoint());
        client.non_blocking(true);
        auto const peer = client.local_endpoint().address();
        server = std::make_shared<Connection>(
            site, worker,
            Connection::Accepted{acceptor.accept(worker.GetContext()), peer, site->AddConnection(peer), nullptr});
        server->Start();
    }

    Connection& GetServer() { return *server; }

    /// Sends; false when the server does not take everything.
    bool Send(std::string_view text) {
        boost::system::error_code error;
        boost::asio::write(client, boost::asio::buffer(text.data(), text.size()), error);
        return !error;
    }

    /// Reads what has arrived; does not run the server.
    std::size_t Receive() {
        std::array<char, 65536> part{};
        boost::system::error_code error;
        std::size_t all = 0;
        while (auto const size = client.read_some(boost::asio::buffer(part), error)) {
            received.append(part.data(), size);
            all += size;
        }
        isEnded = error == boost::asio::error::eof || error == boost::asio::error::connection_reset;
        return all;
    }

    /// The next response; packets before it are skipped. Empty when the connection ends.
    std::string ReadAnswer() {
        std::string answer;
        test::Eventually([&] {
            worker.GetContext().poll();
            Receive();
            SkipPackets();
            if (auto const end = received.find("\r\n\r\n"); !received.starts_with('$') && end != std::string::npos) {
                answer = received.substr(0, end + 4);
                received.erase(0, end + 4);
            }
            return isEnded || !answer.empty();
        });
        return answer;
    }

    /// Whether the server ends the connection.
    bool AwaitEnd() {
        return test::Eventually([&] {
            worker.GetContext().poll();
            Receive();
            return isEnded;
        });
    }

    std::string Ask(std::string const& method, std::string const& fields = {}, std::string const& path = "/channels/1",
                    std::string const& body = {}) {
        Send(method + " " + path + " RTSP/1.0\r\nCSeq: 1\r\n" + fields +
             "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body);
        return ReadAnswer();
    }

    /// Sets channel 1 up. Returns the field that names the session.
    std::string SetUp(std::string const& transport = OverTcp) {
        auto const answer = Ask("SETUP", transport);
        auto const begin = answer.find("Session: ");
        if (begin == std::string::npos) return answer;
        return answer.substr(begin, answer.find(';', begin) - begin) + "\r\n";
    }

private:
    void SkipPackets() {
        constexpr std::size_t Head = 4;
        while (received.size() >= Head && received.starts_with('$')) {
            auto const size = Head + static_cast<unsigned char>(received[2]) * std::size_t{256} +
                              static_cast<unsigned char>(received[3]);
            if (received.size() < size) return;
            received.erase(0, size);
        }
    }

    Worker& worker;
    boost::asio::io_context context;
    tcp::socket client{context};
    std::shared_ptr<Connection> server;
    std::string received;
    bool isEnded = false;
};

class RtspConnection : public ServedStreamTest {
protected:
    RtspConnection() {
        SetFormat();
        stream->Publish(MakeUnit(true));
        site->GetMounts().Set(mount);
    }

    /// The session that a field names.
    std::shared_ptr<Session> Find(std::string const& field) const {
        constexpr std::string_view Name = "Session: ";
        return worker.FindSession(field.substr(Name.size(), field.size() - Name.size() - 2));
    }

    std::shared_ptr<Site> const site =
        std::make_shared<Site>(std::vector<Worker*>{&worker}, std::make_shared<FailedLogins>());
    Pair pair{site, worker};
    boost::asio::io_context context;
    udp::socket const media{context, {boost::asio::ip::address_v4::loopback(), 0}};
    std::string const mediaPort = std::to_string(media.local_endpoint().port());
    std::string const overUdp = "Transport: RTP/AVP;client_port=" + mediaPort + "-" + mediaPort + "\r\n";
};

TEST_F(RtspConnection, EndsASessionThatTimesOut) {
    auto const session = Find(pair.SetUp());
    ASSERT_TRUE(session);
    Silence(*session);
    EXPECT_FALSE(SurvivesSweep(*session));
    EXPECT_TRUE(pair.AwaitEnd()) << "the connection has no other session";
}

TEST_F(RtspConnection, KeepsItsSessionAliveByAnyRequest) {
    auto const field = pair.SetUp();
    auto const session = Find(field);
    ASSERT_TRUE(session);
    for (auto const* method : {"OPTIONS", "GET_PARAMETER", "SET_PARAMETER"}) {
        for (auto const& fields : {field, std::string()}) {
            Silence(*session);
            EXPECT_THAT(pair.Ask(method, fields), StartsWith("RTSP/1.0 200")) << method << fields;
            ASSERT_TRUE(SurvivesSweep(*session)) << method << fields;
        }
    }
}

TEST_F(RtspConnection, KeepsItsSessionAliveByReceiverReports) {
    auto const session = Find(pair.SetUp());
    ASSERT_TRUE(session);
    Silence(*session);
    pair.Send({"$\x01\x00\x08\x80\xC9\x00\x01\x00\x00\x00\x01", 12});
    EXPECT_THAT(pair.Ask("OPTIONS"), StartsWith("RTSP/1.0 200"));
    EXPECT_TRUE(SurvivesSweep(*session));
}

TEST_F(RtspConnection, KeepsAUdpSessionAliveWhenARequestNamesIt) {
    auto const field = pair.SetUp(overUdp);
    auto const session = Find(field);
    ASSERT_TRUE(session);
    Pair other(site, worker);
    for (auto const* method : {"OPTIONS", "GET_PARAMETER", "SET_PARAMETER"}) {
        Silence(*session);
        EXPECT_THAT(other.Ask(method, field), HasSubstr("\r\n" + field)) << method;
        ASSERT_TRUE(SurvivesSweep(*session)) << method;
    }
    Silence(*session);
    EXPECT_THAT(other.Ask("OPTIONS"), StartsWith("RTSP/1.0 200"));
    EXPECT_FALSE(SurvivesSweep(*session)) << "kept alive by a request that does not name it";
}

TEST_F(RtspConnection, EndsWithoutASession) {
    auto const field = pair.SetUp();
    auto const last = Connection::Clock::now();
    pair.GetServer().Sweep(last);
    EXPECT_THAT(pair.Ask("TEARDOWN", field), StartsWith("RTSP/1.0 200"));
    pair.GetServer().Sweep(last + Connection::Patience);
    EXPECT_FALSE(pair.GetServer().IsClosed());
    pair.GetServer().Sweep(last + Connection::Patience + 1ms);
    EXPECT_TRUE(pair.AwaitEnd());
}

TEST_F(RtspConnection, StaysAsLongAsASessionThatItNamed) {
    auto const field = pair.SetUp(overUdp);
    Pair other(site, worker);
    EXPECT_THAT(other.Ask("GET_PARAMETER", field), StartsWith("RTSP/1.0 200"));
    auto const later = Connection::Clock::now() + 10 * Connection::Patience;
    for (auto* each : {&pair, &other}) {
        each->GetServer().Sweep(later);
        EXPECT_FALSE(each->GetServer().IsClosed());
    }
    EXPECT_THAT(other.Ask("TEARDOWN", field), StartsWith("RTSP/1.0 200"));
    for (auto* each : {&pair, &other}) {
        each->GetServer().Sweep(later + Connection::Patience + 1ms);
        EXPECT_TRUE(each->GetServer().IsClosed());
    }
}

TEST_F(RtspConnection, EndsItsSessionsUnlessTheyPlayOverUdp) {
    struct Row {
        std::string transport;
        bool plays;
        bool stays;
    };

    for (auto const& row : {Row{overUdp, true, true}, Row{overUdp, false, false}, Row{OverTcp, true, false},
                            Row{OverTcp, false, false}}) {
        Pair viewer(site, worker);
        auto const field = viewer.SetUp(row.transport);
        if (row.plays) {
            EXPECT_THAT(viewer.Ask("PLAY", field), StartsWith("RTSP/1.0 200"));
        }
        viewer.GetServer().Close();
        EXPECT_EQ(Find(field) != nullptr, row.stays) << row.transport << row.plays;
    }
}

TEST_F(RtspConnection, EndsWhenItsClientSendsTooMuchBetweenTwoChecks) {
    pair.SetUp();
    std::string const packet = std::string("$\x01\x03\xFC", 4) + std::string(1020, 'a');
    auto const sendMuch = [&] {
        for (std::size_t sent = 0; sent < Connection::MaximumReceived * 2 / 3; sent += packet.size()) {
            pair.Send(packet);
            RunHandlers();
        }
    };
    sendMuch();
    pair.GetServer().Sweep(Connection::Clock::now());
    sendMuch();
    EXPECT_FALSE(pair.GetServer().IsClosed());
    sendMuch();
    EXPECT_TRUE(pair.AwaitEnd());
}

TEST_F(RtspConnection, StopsReadingWhileItsAnswersAreNotRead) {
    constexpr std::string_view Request = "OPTIONS * RTSP/1.0\r\nCSeq: 1\r\n\r\n";
    constexpr std::size_t Requests = Connection::MaximumReceived / Request.size() + 500;
    pair.SetUp();
    for (std::size_t count = 0; count < Requests; ++count) {
        ASSERT_TRUE(pair.Send(Request));
        RunHandlers();
    }
    EXPECT_FALSE(pair.GetServer().IsClosed()) << "it has read more than it may between two checks";
    pair.GetServer().Sweep(Connection::Clock::now());
    for (std::size_t count = 0; count < Requests; ++count)
        ASSERT_THAT(pair.ReadAnswer(), StartsWith("RTSP/1.0 200")) << count;
}

TEST_F(RtspConnection, AnswersWithTheDocumentedStatus) {
    site->GetMounts().Set(MakeMount("2"));
    auto const field = pair.SetUp();
    EXPECT_THAT(pair.Ask("SETUP", field + OverTcp, "/channels/2/stream=0"), StartsWith("RTSP/1.0 459"));
    EXPECT_THAT(pair.Ask("PLAY", field + "Range: garbage\r\n"), StartsWith("RTSP/1.0 400"));
    EXPECT_THAT(pair.Ask("PLAY", field), StartsWith("RTSP/1.0 200"));
    EXPECT_THAT(pair.Ask("SETUP", field + OverTcp), StartsWith("RTSP/1.0 455"));
    EXPECT_THAT(pair.Ask("PLAY", field, "/channels/2"), StartsWith("RTSP/1.0 404"));
    for (auto const* method : {"GET_PARAMETER", "SET_PARAMETER"}) {
        for (auto const& fields : {field, std::string()})
            EXPECT_THAT(pair.Ask(method, fields, "*", "position"), StartsWith("RTSP/1.0 451")) << method << fields;
    }
}

TEST_F(RtspConnection, RefusesAChannelWithoutVideo) {
    stream->Interrupt();
    EXPECT_THAT(pair.Ask("DESCRIBE"), StartsWith("RTSP/1.0 503"));
    EXPECT_THAT(pair.Ask("SETUP", OverTcp), StartsWith("RTSP/1.0 503"));
}

TEST_F(RtspConnection, RefusesMoreSessionsThanItMayHave) {
    for (std::size_t count = 0; count < Connection::MaximumSessions; ++count)
        ASSERT_THAT(pair.Ask("SETUP", OverTcp), StartsWith("RTSP/1.0 200")) << count;
    EXPECT_THAT(pair.Ask("SETUP", OverTcp), StartsWith("RTSP/1.0 503"));
    EXPECT_THAT(Pair(site, worker).Ask("SETUP", OverTcp), StartsWith("RTSP/1.0 200"));
}

TEST_F(RtspConnection, RefusesMoreSessionsThanTheServerMayHave) {
    site->SetLimits({.connections = 1});
    for (int count = 0; count < 2; ++count) ASSERT_THAT(pair.Ask("SETUP", OverTcp), StartsWith("RTSP/1.0 200"));
    EXPECT_THAT(pair.Ask("SETUP", OverTcp), StartsWith("RTSP/1.0 503"));
}

TEST_F(RtspConnection, Answers500WhenSetUpFailsAndGoesOn) {
    auto const field = pair.SetUp();
    {
        test::RandomFailure const failure;
        EXPECT_THAT(pair.Ask("SETUP", field + OverTcp), StartsWith("RTSP/1.0 500"));
    }
    EXPECT_THAT(pair.Ask("SETUP", field + OverTcp), StartsWith("RTSP/1.0 200"));
}

TEST_F(RtspConnection, EndsAfterTheAnswerToAMalformedRequest) {
    for (auto const& [request, status] :
         std::vector<std::pair<char const*, char const*>>{{"OPTIONS * RTSP/1.0\r\n\r\n", "400"},
                                                          {"OPTIONS\r\n\r\n", "400"},
                                                          {"A * RTSP/1.0\r\nContent-Length: 65537\r\n\r\n", "413"}}) {
        Pair client(site, worker);
        client.Send(request);
        EXPECT_THAT(client.ReadAnswer(), StartsWith(std::string("RTSP/1.0 ") + status)) << request;
        EXPECT_TRUE(client.AwaitEnd()) << request;
    }
}

TEST_F(RtspConnection, EndsWithoutAnAnswerWhenAHeaderHasNoEnd) {
    pair.Send(std::string(MaximumHeader, 'a'));
    EXPECT_EQ(pair.ReadAnswer(), "");
    EXPECT_TRUE(pair.GetServer().IsClosed());
}

} // namespace
} // namespace zarn::host::video::rtsp
