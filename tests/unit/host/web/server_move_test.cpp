#include "host/web/tls.h"
#include "support/certificate.h"
#include "web/server_fixture.h"

#include <boost/asio/read_until.hpp>
#include <boost/asio/ssl/stream.hpp>
#include <boost/asio/write.hpp>
#include <gmock/gmock.h>

#include <atomic>
#include <chrono>
#include <list>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace zarn::host::web {
namespace {

using namespace std::chrono_literals;
using test::Certificate;
using test::RawConnection;
using test::TemporaryFolder;
namespace ssl = boost::asio::ssl;

/// A request whose client sends the body after it has read `Continue`.
constexpr std::string_view EchoThatAsksToContinue =
    "POST /echo/a HTTP/1.1\r\nHost: h\r\nExpect: 100-continue\r\nContent-Length: 5\r\n\r\n";
constexpr std::string_view Continue = "HTTP/1.1 100 Continue\r\n\r\n";

/// A TLS client that accepts any certificate.
class TlsConnection {
public:
    explicit TlsConnection(std::uint16_t port) {
        stream.next_layer().connect({boost::asio::ip::address_v4::loopback(), port});
        stream.handshake(ssl::stream_base::client);
    }

    void Send(std::string const& bytes) { boost::asio::write(stream, boost::asio::buffer(bytes)); }

    /// Reads up to and including this text; throws when the connection ends first.
    std::string ReadUpTo(std::string const& end) {
        auto const size = boost::asio::read_until(stream, boost::asio::dynamic_buffer(received), end);
        auto text = received.substr(0, size);
        received.erase(0, size);
        return text;
    }

private:
    boost::asio::io_context context;
    ssl::context tls{ssl::context::tls_client};
    ssl::stream<boost::asio::ip::tcp::socket> stream{context, tls};
    std::string received;
};

/// A server that changes its port or switches to TLS while it serves.
class ServerMove : public ServerTest {
protected:
    /// Moves to a free port; returns the previous one.
    std::uint16_t Move() {
        Listener listener(io, 0);
        auto const former = std::exchange(port, listener.GetPort());
        server->SetListener(std::move(listener));
        return former;
    }
};

TEST_F(ServerMove, ServesTheNewPortAndNoLongerTheFormerOne) {
    Start();
    auto const former = Move();
    EXPECT_EQ(Connect().Exchange(Echo()).status, 200U);
    EXPECT_THROW(RawConnection{former}, std::exception);
}

TEST_F(ServerMove, ServesConnectionsQueuedAtTheNewPort) {
    Start();
    Listener listener(io, 0);
    port = listener.GetPort();
    auto early = Connect();
    early.Send(Echo());
    server->SetListener(std::move(listener));
    EXPECT_EQ(early.Read().status, 200U);
}

TEST_F(ServerMove, FinishesActiveRequestsAndClosesTheirConnections) {
    Start();
    auto waiting = Connect();
    waiting.Send(Wait);
    ASSERT_TRUE(AwaitExchanges(1));
    Move();
    ReleaseAnswers();
    auto const response = waiting.Read();
    EXPECT_EQ(response.body, "waited");
    EXPECT_EQ(response.fields.at("connection"), "close");
}

TEST_F(ServerMove, ClosesIdleConnections) {
    Start();
    auto idle = Connect();
    ASSERT_EQ(idle.Exchange(Echo()).status, 200U);
    Move();
    EXPECT_TRUE(idle.IsClosedWithin(Patience));
}

TEST_F(ServerMove, LosesNoRequestOnceItHasBegun) {
    Start();
    std::atomic<bool> over = false;
    std::atomic<std::uint16_t> present = port;
    std::atomic<int> answered = 0;
    std::vector<std::thread> clients;
    for (int i = 0; i < 4; ++i) {
        clients.emplace_back([&] {
            while (!over) {
                std::optional<RawConnection> connection;
                try {
                    connection.emplace(present, Patience);
                } catch (std::exception const&) {
                    continue; // the server has just moved
                }
                try {
                    connection->Send(EchoThatAsksToContinue);
                    auto const answer = connection->ReadBytes(Continue.size());
                    if (answer.empty()) continue; // the port closed before the server accepted the connection
                    EXPECT_EQ(answer, Continue);
                    EXPECT_EQ(connection->Exchange("hello").status, 200U);
                    ++answered;
                } catch (std::exception const& error) {
                    ADD_FAILURE() << "after " << answered << " answers: " << error.what();
                }
            }
        });
    }
    for (int i = 0; i < 30; ++i) {
        int const before = answered;
        Move();
        present = port;
        while (answered < before + 4) std::this_thread::yield();
    }
    over = true;
    for (auto& client : clients) client.join();
}

TEST_F(ServerMove, AnswersTheFirstRequestOnAnExistingConnection) {
    Start();
    auto early = Connect();
    ASSERT_TRUE(AwaitConnections(1));
    Move();
    auto const response = early.Exchange(Echo());
    EXPECT_EQ(response.status, 200U);
    EXPECT_EQ(response.fields.at("connection"), "close");
}

TEST_F(ServerMove, ClosesConnectionsThatNeverSentAnything) {
    lastRequestTime = 10ms;
    Start();
    auto silent = Connect();
    ASSERT_TRUE(AwaitConnections(1));
    Move();
    EXPECT_TRUE(silent.IsClosedWithin(Patience));
}

TEST_F(ServerMove, AnswersRequestsSentBeforeTheyWereAccepted) {
    Start();
    std::list<RawConnection> early;
    for (int i = 0; i < 20; ++i) early.emplace_back(port).Send(Echo());
    for (auto& connection : early) connection.AwaitArrival();
    Move();
    for (auto& connection : early) EXPECT_EQ(connection.Read().status, 200U);
}

TEST_F(ServerMove, IsHarmlessAfterStop) {
    Start();
    server->Stop();
    EXPECT_NO_THROW(Move());
}

TEST_F(ServerMove, SwitchesToTlsAndBack) {
    Start();
    TemporaryFolder const folder;
    Certificate const files(folder);
    auto before = Connect();
    ASSERT_EQ(before.Exchange(Echo()).status, 200U);

    server->SetTls(MakeTlsContext(files.certificate, files.key));
    EXPECT_TRUE(before.IsClosedWithin(Patience));
    auto plain = Connect();
    plain.Send(Echo());
    EXPECT_THAT(plain.ReadAll(), testing::Not(testing::StartsWith("HTTP")));

    server->SetTls(nullptr);
    EXPECT_EQ(Connect().Exchange(Echo()).status, 200U);
}

TEST_F(ServerMove, FinishesActiveRequestsWhenSwitchingToTls) {
    TemporaryFolder const folder;
    Certificate const files(folder);
    auto const tls = MakeTlsContext(files.certificate, files.key);
    Start();
    auto waiting = Connect();
    waiting.Send(Wait);
    ASSERT_TRUE(AwaitExchanges(1));
    server->SetTls(tls);
    ReleaseAnswers();
    auto const response = waiting.Read();
    EXPECT_EQ(response.body, "waited");
    EXPECT_EQ(response.fields.at("connection"), "close");
}

TEST_F(ServerMove, FinishesActiveRequestsWhenTheCertificateIsRenewed) {
    TemporaryFolder const folder;
    Certificate const files(folder);
    Certificate const renewed(folder, "renewed");
    auto const tls = MakeTlsContext(renewed.certificate, renewed.key);
    Start({}, MakeTlsContext(files.certificate, files.key));
    TlsConnection waiting(port);
    waiting.Send(Wait);
    ASSERT_TRUE(AwaitExchanges(1));
    server->SetTls(tls);
    ReleaseAnswers();
    auto const head = waiting.ReadUpTo("waited");
    EXPECT_THAT(head, testing::StartsWith("HTTP/1.1 200 OK"));
    EXPECT_THAT(head, testing::Not(testing::HasSubstr("close"))) << "the existing TLS session must stay open";
    waiting.Send(Echo("again"));
    EXPECT_THAT(waiting.ReadUpTo("again"), testing::StartsWith("HTTP/1.1 200 OK"));
}

} // namespace
} // namespace zarn::host::web
