#include "web/server_fixture.h"

#include <gmock/gmock.h>

#include <thread>
#include <vector>

namespace zarn::host::web {
namespace {

using namespace std::chrono_literals;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

TEST_F(ServerTest, AnswersOneRequestAfterTheOtherOnOneConnection) {
    Start();
    auto connection = Connect();
    for (int i = 0; i < 3; ++i) {
        auto const response = connection.Exchange(Echo("hello " + std::to_string(i)));
        EXPECT_EQ(response.status, 200U);
        EXPECT_THAT(response.body, StartsWith("/echo/a\nhello " + std::to_string(i)));
    }
}

TEST_F(ServerTest, IgnoresConnectionAndServerFieldsOfServices) {
    Start();
    auto const response = Connect().Exchange(Echo());
    EXPECT_FALSE(response.fields.contains("connection"));
    EXPECT_EQ(response.fields.at("server"), "zarn-host");
}

TEST_F(ServerTest, ClosesAConnectionWhenTheClientAsksForIt) {
    Start();
    auto connection = Connect();
    EXPECT_EQ(connection.Exchange(Echo("a", "Connection: close\r\n")).fields.at("connection"), "close");
    EXPECT_TRUE(connection.IsClosedWithin(Patience));
}

TEST_F(ServerTest, ServesClientsOfHttpOneZero) {
    Start();
    auto connection = Connect();
    auto const response = connection.Exchange("POST /echo/a HTTP/1.0\r\nContent-Length: 1\r\n\r\na");
    EXPECT_EQ(response.fields.at("connection"), "close");
    EXPECT_TRUE(connection.IsClosedWithin(Patience));
}

TEST_F(ServerTest, KeepsAnHttpOneZeroConnectionOnlyWhenAsked) {
    Start();
    auto connection = Connect();
    std::string const request = "POST /echo/a HTTP/1.0\r\nConnection: keep-alive\r\nContent-Length: 1\r\n\r\na";
    EXPECT_EQ(connection.Exchange(request).fields.at("connection"), "keep-alive");
    EXPECT_EQ(connection.Exchange(request).status, 200U);
}

TEST_F(ServerTest, Sends100ContinueOnExpect) {
    Start();
    auto connection = Connect();
    connection.Send("POST /echo/a HTTP/1.1\r\nHost: h\r\nExpect: 100-continue\r\nContent-Length: 5\r\n\r\n");
    EXPECT_EQ(connection.ReadBytes(25), "HTTP/1.1 100 Continue\r\n\r\n");
    EXPECT_THAT(connection.Exchange("hello").body, StartsWith("/echo/a\nhello\n"));
}

TEST_F(ServerTest, Omits100ContinueForAReceivedBodyOrHttpOneZero) {
    Start();
    EXPECT_EQ(Connect().Exchange(Echo("hello", "Expect: 100-continue\r\n")).status, 200U);
    auto old = Connect();
    old.Send("POST /echo/a HTTP/1.0\r\nExpect: 100-continue\r\nContent-Length: 5\r\n\r\n");
    EXPECT_EQ(old.Exchange("hello").status, 200U);
}

TEST_F(ServerTest, RefusesABodyBeforeItIsSent) {
    Start({.bodyBytes = 4});
    auto connection = Connect();
    EXPECT_EQ(
        connection.Exchange("POST /echo/a HTTP/1.1\r\nHost: h\r\nExpect: 100-continue\r\nContent-Length: 5\r\n\r\n")
            .status,
        413U);
}

TEST_F(ServerTest, DecodesABodyInChunks) {
    Start();
    auto const response =
        Connect().Exchange("POST /echo/a HTTP/1.1\r\nHost: h\r\nTransfer-Encoding: "
                           "chunked\r\n\r\n3\r\nhel\r\n2;x=y\r\nlo\r\n0\r\nLate: 1\r\nHost: other\r\n\r\n");
    EXPECT_THAT(response.body, StartsWith("/echo/a\nhello\n"));
    EXPECT_THAT(response.body, Not(HasSubstr("Late")));
    EXPECT_THAT(response.body, Not(HasSubstr("other")));
    EXPECT_THAT(response.body, Not(HasSubstr("Transfer-Encoding")));
}

TEST_F(ServerTest, AnswersPipelinedRequestsInOrder) {
    Start();
    auto connection = Connect();
    connection.Send(Wait + Echo("second"));
    ASSERT_TRUE(AwaitExchanges(1));
    ReleaseAnswers();
    EXPECT_EQ(connection.Read().body, "waited");
    EXPECT_THAT(connection.Read().body, HasSubstr("second"));
}

TEST_F(ServerTest, PassesTheTargetInOriginForm) {
    Start();
    EXPECT_THAT(Connect().Exchange("POST http://h:1/echo/a?b HTTP/1.1\r\nHost: h\r\nContent-Length: 0\r\n\r\n").body,
                StartsWith("/echo/a?b\n"));
}

TEST_F(ServerTest, SkipsEmptyLinesBetweenRequests) {
    Start();
    auto connection = Connect();
    EXPECT_EQ(connection.Exchange(Echo() + "\r\n").status, 200U);
    EXPECT_EQ(connection.Exchange("\r\n" + Echo()).status, 200U);
}

TEST_F(ServerTest, ReadsARequestByteByByte) {
    Start();
    auto connection = Connect();
    for (char const byte : Echo()) connection.Send(std::string_view(&byte, 1));
    EXPECT_EQ(connection.Read().status, 200U);
}

TEST_F(ServerTest, AnswersHeadWithoutABody) {
    Start();
    auto connection = Connect();
    connection.Send("HEAD /big HTTP/1.1\r\nHost: h\r\n\r\n" + Echo());
    EXPECT_EQ(connection.Read(false).fields.at("content-length"), std::to_string(BigSize));
    EXPECT_EQ(connection.Read().status, 200U);
}

TEST_F(ServerTest, Answers404And405AndKeepsTheConnection) {
    Start();
    auto connection = Connect();
    EXPECT_EQ(connection.Exchange("GET /nothing HTTP/1.1\r\nHost: h\r\n\r\n").status, 404U);
    auto const refusal = connection.Exchange("DELETE /wait HTTP/1.1\r\nHost: h\r\n\r\n");
    EXPECT_EQ(refusal.status, 405U);
    EXPECT_THAT(refusal.fields.at("allow"), HasSubstr("GET"));
    EXPECT_EQ(connection.Exchange("BREW /wait HTTP/1.1\r\nHost: h\r\n\r\n").status, 405U);
    EXPECT_EQ(connection.Exchange(Echo()).status, 200U);
}

TEST_F(ServerTest, SendsALongResponseWhole) {
    Start();
    EXPECT_EQ(Connect().Exchange("GET /big HTTP/1.1\r\nHost: h\r\n\r\n").body.size(), BigSize);
}

TEST_F(ServerTest, ServesManyConnectionsAtOnce) {
    Start();
    std::vector<std::thread> clients;
    std::atomic<int> answers = 0;
    for (int i = 0; i < 32; ++i) {
        clients.emplace_back([&] {
            auto connection = Connect();
            for (int j = 0; j < 20; ++j) answers += connection.Exchange(Echo()).status == 200 ? 1 : 0;
        });
    }
    for (auto& client : clients) client.join();
    EXPECT_EQ(answers, 32 * 20);
}

TEST_F(ServerTest, SurvivesClientsThatDisconnectEarly) {
    Start();
    std::string const request = Echo();
    for (std::size_t length = 0; length < request.size(); length += 7) Connect().Send(request.substr(0, length));
    for (int i = 0; i < 5; ++i) Connect().Send("GET /big HTTP/1.1\r\nHost: h\r\n\r\n");
    EXPECT_EQ(Connect().Exchange(Echo()).status, 200U);
    EXPECT_TRUE(AwaitConnections(0));
}

} // namespace
} // namespace zarn::host::web
