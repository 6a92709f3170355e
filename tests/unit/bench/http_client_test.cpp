#include "unit/bench/scripted_server.h"

#include <bench/http_client.h>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/use_future.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace zarn::bench {
namespace {

using test::ScriptedServer;
using testing::ElementsAre;
using testing::StartsWith;

std::string MakeHttpResponse(std::string const& body) {
    return "HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
}

boost::asio::awaitable<std::string> Exchange(HttpConnection& connection) {
    co_return std::string(co_await connection.Exchange("POST / HTTP/1.1\r\n\r\n"));
}

/// The bodies that a client reads from a server, one exchange after the other.
std::vector<std::string> ExchangeAll(std::vector<std::string> const& responses) {
    ScriptedServer server(responses);
    boost::asio::io_context io;
    HttpConnection connection(io, server.GetPort());
    std::vector<std::string> bodies;
    for (std::size_t i = 0; i < responses.size(); ++i) {
        auto body = boost::asio::co_spawn(io, Exchange(connection), boost::asio::use_future);
        io.restart();
        io.run();
        bodies.push_back(body.get());
    }
    return bodies;
}

TEST(HttpConnection, ReadsOneResponseAfterTheOther) {
    EXPECT_THAT(
        ExchangeAll({MakeHttpResponse("one"), MakeHttpResponse(""), MakeHttpResponse(std::string(100'000, 'x'))}),
        ElementsAre("one", "", std::string(100'000, 'x')));
}

TEST(HttpConnection, FailsForAnErrorOfTheServer) {
    EXPECT_THROW(ExchangeAll({"HTTP/1.1 503 Service Unavailable\r\nContent-Length: 0\r\n\r\n"}), std::runtime_error);
}

TEST(HttpConnection, FailsForAResponseWithoutALength) {
    EXPECT_THROW(ExchangeAll({"HTTP/1.1 200 OK\r\n\r\n"}), std::runtime_error);
    EXPECT_THROW(ExchangeAll({"HTTP/1.1 200 OK\r\nContent-Length: many\r\n\r\n"}), std::runtime_error);
    EXPECT_THROW(ExchangeAll({"HTTP/1.1 200 OK\r\nContent-Length: 99999999999\r\n\r\n"}), std::runtime_error);
}

TEST(HttpConnection, FailsWhenTheResponseIsCut) {
    EXPECT_THROW(ExchangeAll({"HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\nshort"}), std::runtime_error);
}

TEST(HttpClient, TellsTheLengthOfARequest) {
    EXPECT_THAT(MakeRequest("/a?b", "text/plain", "body"), StartsWith("POST /a?b HTTP/1.1\r\n"));
    EXPECT_THAT(MakeRequest("/a?b", "text/plain", "body"), testing::EndsWith("Content-Length: 4\r\n\r\nbody"));
}

TEST(HttpClient, FindsTheSubscriptionInAResponse) {
    EXPECT_EQ(ReadSubscription("<a:Address>http://h:1/onvif/events_service/Subscription?Idx=7</a:Address>"),
              "/onvif/events_service/Subscription?Idx=7");
    EXPECT_THROW(ReadSubscription("<s:Fault/>"), std::runtime_error);
}

} // namespace
} // namespace zarn::bench
