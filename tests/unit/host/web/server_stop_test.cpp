#include "support/thread_failure.h"
#include "web/server_fixture.h"

#include <gmock/gmock.h>

#include <chrono>
#include <memory>
#include <stdexcept>
#include <vector>

namespace zarn::host::web {
namespace {

using namespace std::chrono_literals;
using test::RawConnection;
using Clock = std::chrono::steady_clock;

class ServerStop : public ServerTest {};

TEST_F(ServerStop, RefusesNewConnectionsAndClosesIdleOnes) {
    Start();
    auto idle = Connect();
    EXPECT_EQ(idle.Exchange(Echo()).status, 200U);
    server->StopAccepting();
    EXPECT_TRUE(idle.IsClosedWithin(Patience));
    EXPECT_THROW(Connect(), std::exception);
}

TEST_F(ServerStop, DeliversResponsesToActiveRequests) {
    Start();
    auto waiting = Connect();
    waiting.Send(Wait);
    ASSERT_TRUE(AwaitExchanges(1));
    server->StopAccepting();
    ReleaseAnswers();
    auto const response = waiting.Read();
    EXPECT_EQ(response.body, "waited");
    EXPECT_EQ(response.fields.at("connection"), "close");
}

TEST_F(ServerStop, DoesNotWaitForItsClients) {
    Limits const patient{.headerTime = 2 * Patience, .idleTime = 2 * Patience};
    Start(patient);
    std::vector<std::unique_ptr<RawConnection>> clients;
    for (auto const* bytes : {"", "GET /wa", Wait, "GET /big HTTP/1.1\r\nHost: h\r\n\r\n",
                              "POST /echo/a HTTP/1.1\r\nHost: h\r\nContent-Length: 9\r\n\r\nx"}) {
        clients.push_back(std::make_unique<RawConnection>(port));
        clients.back()->Send(bytes);
    }
    ASSERT_TRUE(AwaitConnections(5));
    auto const begun = Clock::now();
    server->Stop(100ms);
    EXPECT_LT(Clock::now() - begun, patient.headerTime / 2) << "the server waited for its clients";
}

TEST_F(ServerStop, IsHarmlessTwice) {
    Start();
    server->Stop();
    EXPECT_NO_THROW(server->Stop());
    EXPECT_NO_THROW(server->StopAccepting());
}

class ServerStopWithoutThreads : public ServerStop, public testing::WithParamInterface<int> {};

TEST_P(ServerStopWithoutThreads, LeavesNothingBehind) {
    test::ThreadFailure const failure(GetParam());
    try {
        Start();
        FAIL() << "the server started";
    } catch (std::runtime_error const& error) {
        EXPECT_THAT(error.what(), testing::HasSubstr("a thread of the web server cannot be started"));
    }
    EXPECT_THROW(Connect(), std::exception);
}

INSTANTIATE_TEST_SUITE_P(AfterThreads, ServerStopWithoutThreads, testing::Values(0, 1));

TEST_F(ServerStop, KeepsAConnectionWhoseAnswerIsPending) {
    Start();
    auto waiting = Connect();
    waiting.Send(Wait);
    ASSERT_TRUE(AwaitExchanges(1));
    server->Stop(0ms);
    server.reset();
    EXPECT_EQ(admission->GetExchanges(), 1U);
    release.reset();
    EXPECT_EQ(admission->GetExchanges(), 0U);
}

} // namespace
} // namespace zarn::host::web
