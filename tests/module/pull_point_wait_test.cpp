#include "pull_point_fixture.h"

#include <zarn/chrono/iso8601.h>

#include <gmock/gmock.h>
#include <unistd.h>

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <future>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace zarn::test {
namespace {

using namespace std::chrono_literals;
using testing::AllOf;
using testing::ElementsAre;
using testing::Ge;
using testing::IsEmpty;
using testing::Le;
using Clock = std::chrono::steady_clock;

constexpr auto Waiting = std::future_status::timeout;

/// Nothing more is expected to happen in this time; a test that is too early sees nothing wrong.
constexpr auto Moment = 50ms;

/// Waits until at least as many other threads of the process are there and all of them sleep; false when they do not
/// within ten seconds. Two looks, since the threads are looked at one after the other.
bool OthersSleep(std::size_t count) {
    auto const self = std::to_string(gettid());
    int asleep = 0;
    for (auto const deadline = Clock::now() + 10s; asleep < 2 && Clock::now() < deadline;) {
        std::size_t sleepers = 0;
        bool all = true;
        for (auto const& task : std::filesystem::directory_iterator("/proc/self/task")) {
            if (task.path().filename() == self) continue;
            std::string stat;
            std::getline(std::ifstream(task.path() / "stat"), stat);
            // The state stands behind the name, which is in parentheses.
            bool const sleeps = stat.find(") S ") != stat.npos;
            sleepers += sleeps ? 1 : 0;
            all = all && sleeps;
        }
        asleep = all && sleepers >= count ? asleep + 1 : 0;
        std::this_thread::sleep_for(5ms);
    }
    return asleep == 2;
}

/// How long PullMessages waits.
class PullPointWait : public PullPointFixture {};

TEST_F(PullPointWait, LastsNoLongerThanAsked) {
    auto const path = Subscribe();
    auto const begin = Clock::now();
    auto const reply = Pull(path, 1, "PT0.3S");
    auto const lasted = Clock::now() - begin;
    EXPECT_GE(lasted, 300ms);
    EXPECT_LT(lasted, 10s);
    EXPECT_EQ(reply.status, 200);
    EXPECT_THAT(GetRules(reply), IsEmpty());
}

TEST_F(PullPointWait, IsOverWhenTheAnswerTellsTheTime) {
    auto const path = Subscribe();
    auto const begin = std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now());
    EXPECT_GE(chrono::FromIso8601(Pull(path, 1, "PT1.1S").Text("//tev:CurrentTime")), begin + 1s);
}

TEST_F(PullPointWait, IsNoneForASpanThatIsOverOrForNoMessages) {
    auto const path = Subscribe();
    EXPECT_EQ(Pull(path, 1, "-PT1H").status, 200);
    Publish(MakeFieldEvent());
    EXPECT_EQ(Pull(path, 0, "PT1H").status, 200);
}

TEST_F(PullPointWait, IsThereAlsoForWhoWantsNoMessage) {
    auto const begin = Clock::now();
    EXPECT_EQ(Pull(Subscribe(), 0, "PT0.3S").status, 200);
    EXPECT_GE(Clock::now() - begin, 300ms);
}

TEST_F(PullPointWait, LooksAtTheTimeoutOnlyWhenThereIsNothing) {
    auto const path = Subscribe();
    Publish(MakeFieldEvent("one"));
    EXPECT_THAT(GetRules(Pull(path, 1, "soon")), ElementsAre("one"));
    EXPECT_THROW(Pull(path, 1, "soon"), std::future_error);
}

TEST_F(PullPointWait, EndsAlsoWithAnEventThatTheFilterHoldsBack) {
    auto const path = Subscribe(
        "<tev:Filter><wsnt:TopicExpression>tns1:RuleEngine/LineDetector/Crossed</wsnt:TopicExpression></tev:Filter>");
    auto reply = PullLater(path, "PT1H");
    EXPECT_EQ(reply.wait_for(Moment), Waiting);
    Publish(MakeFieldEvent("field"));
    EXPECT_THAT(GetRules(reply.get()), IsEmpty());
}

TEST_F(PullPointWait, EndsWithAnEvent) {
    auto const path = Subscribe();
    auto reply = PullLater(path, "PT1H");
    EXPECT_EQ(reply.wait_for(Moment), Waiting);
    Publish(MakeFieldEvent("one"));
    EXPECT_THAT(GetRules(reply.get()), ElementsAre("one"));
}

TEST_F(PullPointWait, EndsForEverySubscriptionWithOneEvent) {
    std::vector<std::future<Reply>> clients;
    for (int i = 0; i < 4; ++i) clients.push_back(PullLater(Subscribe(), "PT1H"));
    for (auto const& client : clients) EXPECT_EQ(client.wait_for(Moment), Waiting);
    Publish(MakeFieldEvent("one"));
    for (auto& client : clients) EXPECT_THAT(GetRules(client.get()), ElementsAre("one"));
}

TEST_F(PullPointWait, LastsAsLongAsTheClockDoes) {
    auto const path = Subscribe();
    auto reply = PullLater(path, "P292Y");
    EXPECT_EQ(reply.wait_for(Moment), Waiting);
    Publish(MakeFieldEvent("one"));
    EXPECT_THAT(GetRules(reply.get()), ElementsAre("one"));
}

TEST_F(PullPointWait, EndsWhenTheSubscriptionIsUnsubscribed) {
    auto const path = Subscribe();
    auto reply = PullLater(path, "PT1H");
    EXPECT_EQ(reply.wait_for(Moment), Waiting);
    EXPECT_EQ(Unsubscribe(path).status, 200);
    EXPECT_THAT(reply.get(), IsNotFound());
}

TEST_F(PullPointWait, EndsWhenTheTimeOfTheSubscriptionIsOver) {
    auto const path = Subscribe(Termination("PT0.2S"));
    EXPECT_THAT(Pull(path, 1, "PT1H"), IsNotFound());
}

TEST_F(PullPointWait, OfTwoEndsForOneWhenASingleEventComes) {
    auto const path = Subscribe();
    std::vector<std::future<Reply>> clients;
    for (int i = 0; i < 2; ++i) clients.push_back(PullLater(path, "PT1H"));
    for (auto const& client : clients) EXPECT_EQ(client.wait_for(Moment), Waiting);
    Publish(MakeFieldEvent("one"));
    while (clients[0].wait_for(1ms) == Waiting && clients[1].wait_for(1ms) == Waiting) {
    }
    bool const first = clients[0].wait_for(0s) != Waiting;
    EXPECT_EQ(clients[first ? 1 : 0].wait_for(Moment), Waiting);
    EXPECT_THAT(GetRules(clients[first ? 0 : 1].get()), ElementsAre("one"));
    Publish(MakeFieldEvent("two"));
    EXPECT_THAT(GetRules(clients[first ? 1 : 0].get()), ElementsAre("two"));
}

TEST_F(PullPointWait, EndsForAllWhenTheSubscriptionEnds) {
    auto const path = Subscribe();
    std::vector<std::future<Reply>> clients;
    for (int i = 0; i < 4; ++i) clients.push_back(PullLater(path, "PT1H"));
    for (auto const& client : clients) EXPECT_EQ(client.wait_for(Moment), Waiting);
    EXPECT_EQ(Renew(path, "2001-01-01T00:00:00Z").status, 200);
    for (auto& client : clients) EXPECT_THAT(client.get(), IsNotFound());
}

TEST_F(PullPointWait, GoesOnWhenAnotherSubscriptionEnds) {
    auto const path = Subscribe();
    auto const other = Subscribe();
    auto client = PullLater(path, "PT1H");
    EXPECT_EQ(client.wait_for(Moment), Waiting);
    EXPECT_EQ(Unsubscribe(other).status, 200);
    EXPECT_EQ(client.wait_for(Moment), Waiting);
    Publish(MakeFieldEvent("one"));
    EXPECT_THAT(GetRules(client.get()), ElementsAre("one"));
}

TEST_F(PullPointWait, GoesOnOverARenewalAndTellsTheEndThatStoodBefore) {
    auto const path = Subscribe(Termination("2061-07-28T12:30:00Z"));
    auto client = PullLater(path, "PT1H");
    EXPECT_EQ(client.wait_for(Moment), Waiting);
    EXPECT_EQ(Renew(path, "2071-07-28T12:30:00Z").status, 200);
    EXPECT_EQ(client.wait_for(Moment), Waiting);
    Publish(MakeFieldEvent("one"));
    auto const reply = client.get();
    EXPECT_THAT(GetRules(reply), ElementsAre("one"));
    EXPECT_EQ(reply.Text("//tev:PullMessagesResponse/tev:TerminationTime"), "2061-07-28T12:30:00Z");
    EXPECT_EQ(Pull(path).Text("//tev:PullMessagesResponse/tev:TerminationTime"), "2071-07-28T12:30:00Z");
}

TEST_F(PullPointWait, OfAHundredClientsEndsWithTheirManager) {
    std::vector<std::shared_ptr<web::response::Pending>> replies;
    for (int i = 0; i < 100; ++i) replies.push_back(PostPull(Subscribe(), 1, "PT1H"));
    ASSERT_TRUE(OthersSleep(replies.size()));
    auto const begin = Clock::now();
    ReplaceManager();
    EXPECT_LT(Clock::now() - begin, 2s);
    for (auto& reply : replies) EXPECT_EQ(WaitFor(*reply).GetStatus(), protocol::network::http::response::Status::Ok);
}

TEST_F(PullPointWait, EndsWithTheManagerAsItDoesAtItsTime) {
    auto const reply = PostPull(Subscribe(Termination("2061-07-28T12:30:00Z")), 1, "PT1H");
    ASSERT_TRUE(OthersSleep(1));
    EXPECT_EQ(reply->GetData().GetState(), web::response::State::NotReady);
    auto const begin = std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now());
    EndManager();
    auto const answer = ToReply(reply->GetData());
    EXPECT_THAT(Masked(answer),
                Answers("<tev:PullMessagesResponse><tev:CurrentTime>@TIME@</tev:CurrentTime>"
                        "<tev:TerminationTime>@TIME@</tev:TerminationTime></tev:PullMessagesResponse>"));
    EXPECT_EQ(answer.Text("//tev:TerminationTime"), "2061-07-28T12:30:00Z");
    EXPECT_THAT(chrono::FromIso8601(answer.Text("//tev:CurrentTime")),
                AllOf(Ge(begin), Le(std::chrono::system_clock::now())));
}

TEST_F(PullPointWait, GoesOnInOneManagerWhenAnotherEnds) {
    auto const path = Subscribe();
    Manager();
    auto first = std::make_unique<service::onvif::Manager>(&engine, root, channelInfo, identity);
    auto const ended = first->Post(MakePull(Subscribe(), 1, "PT1H"));
    auto const reply = PostPull(path, 1, "PT1H");
    ASSERT_TRUE(OthersSleep(2));
    first.reset();
    EXPECT_EQ(ended->GetData().GetState(), web::response::State::Complete);
    ASSERT_TRUE(OthersSleep(1)) << "whoever has been woken has looked";
    EXPECT_EQ(reply->GetData().GetState(), web::response::State::NotReady);
    Publish(MakeFieldEvent("one"));
    EXPECT_THAT(GetRules(ToReply(WaitFor(*reply))), ElementsAre("one"));
}

} // namespace
} // namespace zarn::test
