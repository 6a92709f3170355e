#include "web/server_fixture.h"

#include <gmock/gmock.h>

#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <stop_token>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace zarn::host::web {
namespace {

using namespace std::chrono_literals;
using test::RawConnection;
using test::RawResponse;
using Clock = std::chrono::steady_clock;

class ServerBounds : public ServerTest {
protected:
    /// Status of the response to these bytes; expects that the connection closes afterwards.
    unsigned Refusal(std::string const& bytes) {
        auto connection = Connect();
        auto const response = connection.Exchange(bytes);
        EXPECT_EQ(response.fields.at("connection"), "close");
        EXPECT_TRUE(connection.IsClosedWithin(Patience));
        return response.status;
    }

    /// Sends these bytes and returns the connection once `hasBegun` holds. Retries on a new connection, because on a
    /// slow machine a server with short limits may close one before the bytes arrive.
    std::unique_ptr<RawConnection> Begin(std::string const& bytes,
                                         std::function<bool(RawConnection&)> const& hasBegun) {
        for (int i = 0; i < 20; ++i) {
            auto connection = std::make_unique<RawConnection>(port, Patience);
            connection->Send(bytes);
            if (hasBegun(*connection)) return connection;
        }
        throw std::runtime_error("the server ends every connection before a request");
    }

    /// A connection after its first response, and that response.
    std::pair<std::unique_ptr<RawConnection>, RawResponse> BeginAnswered(std::string const& bytes) {
        std::optional<RawResponse> response;
        auto connection = Begin(bytes, [&](RawConnection& each) { return (response = each.ReadIfAny()).has_value(); });
        return {std::move(connection), *std::move(response)};
    }
};

TEST_F(ServerBounds, LimitTheSizeOfAHeader) {
    Start();
    std::string fields;
    for (int i = 0; i < 100; ++i) fields += "F" + std::to_string(i) + ": " + std::string(1000, 'x') + "\r\n";
    EXPECT_EQ(Refusal("GET /wait HTTP/1.1\r\nHost: h\r\n" + fields + "\r\n"), 431U);
    EXPECT_EQ(Refusal("GET /wait HTTP/1.1\r\nHost: h\r\nF: " + std::string(1000000, 'x') + "\r\n\r\n"), 431U);
}

TEST_F(ServerBounds, LimitTheLengthOfAHeaderLine) {
    Start();
    EXPECT_EQ(Refusal("GET /wait HTTP/1.1\r\nHost: h\r\nF: " + std::string(8188, 'x') + "\r\n\r\n"), 431U);
    EXPECT_EQ(Connect().Exchange(Echo("a", "F: " + std::string(8187, 'x') + "\r\n")).status, 200U);
}

TEST_F(ServerBounds, LimitTheLengthOfTheTarget) {
    Start();
    EXPECT_EQ(Refusal("GET /" + std::string(1000, 'x') + " HTTP/1.1\r\nHost: h\r\n\r\n"), 414U);
}

TEST_F(ServerBounds, LimitTheSizeOfABodyWithEitherFraming) {
    Start({.bodyBytes = 1000});
    EXPECT_EQ(Connect().Exchange(Echo(std::string(1000, 'x'))).status, 200U);
    EXPECT_EQ(Refusal(Echo(std::string(1001, 'x'))), 413U);
    EXPECT_EQ(Refusal("POST /echo/a HTTP/1.1\r\nHost: h\r\nTransfer-Encoding: chunked\r\n\r\n3e9\r\n" +
                      std::string(1001, 'x')),
              413U);
}

TEST_F(ServerBounds, AnswerAClientThatIsStillSendingItsMegabytes) {
    Start({.bodyBytes = 1000});
    EXPECT_EQ(Refusal(Echo(std::string(4 * 1024 * 1024, 'x'))), 413U);
}

TEST_F(ServerBounds, RefuseInvalidHttp) {
    Start();
    EXPECT_EQ(Refusal("hello\r\n\r\n"), 400U);
    EXPECT_EQ(Refusal(std::string("\x16\x03\x01\x02\x00\x01", 6) + std::string(200, '\1')), 400U);
    EXPECT_EQ(Refusal("GET /wait HTTP/2.0\r\nHost: h\r\n\r\n"), 505U);
    EXPECT_EQ(Refusal("GET /wait HTTP/1.1\r\n\r\n"), 400U);
    EXPECT_EQ(Refusal("POST /echo/a HTTP/1.1\r\nHost: h\r\n\r\n"), 411U);
    EXPECT_EQ(Refusal("POST /echo/a HTTP/1.1\r\nHost: h\r\nContent-Length: -1\r\n\r\n"), 400U);
    EXPECT_EQ(Refusal("POST /echo/a HTTP/1.1\r\nHost: h\r\nTransfer-Encoding: chunked\r\n\r\nzz\r\n"), 400U);
    EXPECT_EQ(Refusal("GET /wait HTTP/1.1\r\nHost: h\r\nA: b\1c\r\n\r\n"), 400U);
}

TEST_F(ServerBounds, RefuseAnAmbiguousLength) {
    Start();
    EXPECT_EQ(
        Refusal("POST /echo/a HTTP/1.1\r\nHost: h\r\nContent-Length: 5\r\nTransfer-Encoding: chunked\r\n\r\n0\r\n\r\n"),
        400U);
    EXPECT_EQ(Refusal("POST /echo/a HTTP/1.1\r\nHost: h\r\nContent-Length: 5\r\nContent-Length: 6\r\n\r\nhello"), 400U);
}

TEST_F(ServerBounds, LimitTheTimeOfAHeader) {
    Start({.headerTime = 1s});
    auto connection = Connect();
    auto const begun = Clock::now();
    connection.Send("GET /wait HT");
    EXPECT_EQ(connection.Read().status, 408U);
    EXPECT_GE(Clock::now() - begun, 1s);
    EXPECT_TRUE(connection.IsClosedWithin(Patience));
}

TEST_F(ServerBounds, LimitTheTimeOfATricklingHeader) {
    Start({.headerTime = 1s});
    auto connection = Connect();
    connection.Send("GET /wait HTTP/1.1\r\nF: ");
    std::jthread const drip([&](std::stop_token const& stop) {
        for (; !stop.stop_requested(); std::this_thread::sleep_for(20ms)) connection.Send("x");
    });
    EXPECT_EQ(connection.Read().status, 408U);
}

TEST_F(ServerBounds, LimitTheTimeOfABody) {
    Start({.idleTime = 1s});
    EXPECT_EQ(BeginAnswered("POST /echo/a HTTP/1.1\r\nHost: h\r\nContent-Length: 5\r\n\r\nhel").second.status, 408U);
}

TEST_F(ServerBounds, LimitTheTimeOfAnEndlessBody) {
    Start();
    auto connection = Connect();
    ASSERT_TRUE(AwaitConnections(1));
    server->SetLimits({.bodyBytes = 1024 * 1024 * 1024, .idleTime = 1s});
    connection.Send("POST /echo/a HTTP/1.1\r\nHost: h\r\nTransfer-Encoding: chunked\r\n\r\n");
    std::string chunks;
    for (int i = 0; i < 1000; ++i) chunks += "1\r\nx\r\n";
    std::jthread const flood([&](std::stop_token const& stop) {
        while (!stop.stop_requested()) connection.Send(chunks);
    });
    EXPECT_TRUE(AwaitConnections(0));
}

TEST_F(ServerBounds, CloseAnIdleConnection) {
    Start({.idleTime = 1s});
    auto silent = Connect();
    auto const [served, response] = BeginAnswered(Echo());
    EXPECT_EQ(response.status, 200U);
    EXPECT_TRUE(silent.IsClosedWithin(Patience));
    EXPECT_TRUE(served->IsClosedWithin(Patience));
}

TEST_F(ServerBounds, LimitTheNumberOfEmptyLinesBeforeARequest) {
    Start();
    EXPECT_EQ(Connect().Exchange("\r\n\r\n" + Echo()).status, 200U);
    EXPECT_EQ(Refusal("\r\n\r\n\r\n" + Echo()), 400U);
    auto connection = Connect();
    for (int i = 0; i < 3; ++i) EXPECT_EQ(connection.Exchange(Echo() + "\r\n").status, 200U);
}

TEST_F(ServerBounds, KeepAConnectionThatWaitsForItsResponse) {
    Start({.headerTime = 1s, .idleTime = 1s});
    auto const connection = Begin(Wait, [&](RawConnection& each) {
        while (admission->GetExchanges() == 0 && !each.IsClosedWithin(1ms)) {
        }
        return admission->GetExchanges() == 1;
    });
    auto later = Connect();
    EXPECT_TRUE(later.IsClosedWithin(Patience)) << "the idle limit has not expired";
    EXPECT_FALSE(connection->IsClosedWithin(0ms));
    ReleaseAnswers();
    EXPECT_EQ(connection->Read().body, "waited");
}

TEST_F(ServerBounds, CloseAConnectionThatDoesNotReadItsResponse) {
    Start();
    auto connection = Connect();
    ASSERT_TRUE(AwaitConnections(1));
    server->SetLimits({.idleTime = 1s});
    connection.Send("GET /big HTTP/1.1\r\nHost: h\r\n\r\n");
    EXPECT_TRUE(AwaitConnections(0));
}

TEST_F(ServerBounds, KeepSlowClientsFromHoldingUpOthers) {
    Start();
    std::vector<std::unique_ptr<RawConnection>> slow;
    for (int i = 0; i < 20; ++i) {
        slow.push_back(std::make_unique<RawConnection>(port));
        slow.back()->Send("POST /echo/a HTTP/1.1\r\nHost: h\r\nContent-Length: 5\r\n\r\nhel");
        slow.push_back(std::make_unique<RawConnection>(port));
        slow.back()->Send("GET /big HTTP/1.1\r\nHost: h\r\n\r\n");
    }
    EXPECT_EQ(Connect().Exchange(Echo()).status, 200U);
    EXPECT_GE(admission->GetConnections(), slow.size()) << "the server waited for slow clients";
}

TEST_F(ServerBounds, LimitTheTotalNumberOfConnections) {
    Start({.connections = 3});
    std::vector<std::unique_ptr<RawConnection>> open;
    for (int i = 0; i < 3; ++i) open.push_back(std::make_unique<RawConnection>(port));
    ASSERT_TRUE(AwaitConnections(3));
    EXPECT_EQ(Connect().Read().status, 503U);
    EXPECT_EQ(open.front()->Exchange(Echo()).status, 200U);
    open.pop_back();
    ASSERT_TRUE(AwaitConnections(2));
    EXPECT_EQ(Connect().Exchange(Echo()).status, 200U);
}

TEST_F(ServerBounds, LimitTheConnectionsOfOneAddress) {
    Start({.connectionsPerAddress = 1});
    auto const first = Connect();
    ASSERT_TRUE(AwaitConnections(1));
    EXPECT_EQ(Connect().Read().status, 503U);
}

TEST_F(ServerBounds, AllowSixtyFourConnectionsOfOneAddressByDefault) {
    Start();
    std::vector<std::unique_ptr<RawConnection>> open;
    for (int i = 0; i < 64; ++i) open.push_back(std::make_unique<RawConnection>(port));
    for (auto const& connection : open) EXPECT_EQ(connection->Exchange(Echo()).status, 200U);
}

TEST_F(ServerBounds, LimitExchangesEvenAfterTheirClientsLeave) {
    Start({.exchanges = 2});
    for (int i = 0; i < 2; ++i) {
        Connect().Send(Wait);
        ASSERT_TRUE(AwaitExchanges(static_cast<std::size_t>(i) + 1));
    }
    auto connection = Connect();
    EXPECT_EQ(connection.Exchange(Echo()).status, 503U);
    ReleaseAnswers();
    ASSERT_TRUE(AwaitExchanges(0));
    EXPECT_EQ(connection.Exchange(Echo()).status, 200U);
}

TEST_F(ServerBounds, CanBeChangedWhileItRuns) {
    Start({.bodyBytes = 1000});
    auto connection = Connect();
    EXPECT_EQ(connection.Exchange(Echo(std::string(10, 'x'))).status, 200U);
    server->SetLimits({.bodyBytes = 4});
    EXPECT_EQ(connection.Exchange(Echo()).status, 413U);
}

} // namespace
} // namespace zarn::host::web
