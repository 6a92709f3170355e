#include "pull_point_fixture.h"
#include "support/asleep.h"
#include "support/eventually.h"
#include "support/resident_pages.h"

#include <service/onvif/events.h>
#include <service/onvif/soap_context.h>
#include <service/onvif/subscription.h>
#include <zarn/chrono/iso8601.h>

#include <gmock/gmock.h>

#include <chrono>
#include <cstdio>
#include <future>
#include <memory>
#include <string>
#include <utility>
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

/// Waiting times of PullMessages.
class PullPointWait : public PullPointFixture {
protected:
    using Exchange = std::shared_ptr<web::response::Pending>;

    /// Starts a pull and returns once the exchange is waiting.
    Exchange BeginToWait(std::string const& path, std::string const& timeout = "PT1H") {
        auto exchange = PostPull(path, 100, timeout);
        EXPECT_TRUE(Waits(*exchange));
        return exchange;
    }

    /// True if the exchange still waits after all pending work has finished.
    static bool Waits(web::response::Pending& exchange) { return OthersSleep(1) && IsPending(exchange); }

    static bool IsPending(web::response::Pending& exchange) {
        return exchange.GetData().GetState() == web::response::State::NotReady;
    }

    static Reply GetReply(Exchange const& exchange) { return ToReply(WaitFor(*exchange)); }
};

TEST_F(PullPointWait, EndsAtTheTimeout) {
    auto const path = Subscribe();
    auto const begin = Clock::now();
    auto const reply = Pull(path, 1, "PT0.3S");
    auto const lasted = Clock::now() - begin;
    EXPECT_GE(lasted, 300ms);
    EXPECT_LT(lasted, 60s);
    EXPECT_EQ(reply.status, 200);
    EXPECT_THAT(GetRules(reply), IsEmpty());
}

TEST_F(PullPointWait, EndsBeforeTheCurrentTimeIsTaken) {
    auto const path = Subscribe();
    auto const begin = std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now());
    EXPECT_GE(chrono::FromIso8601(Pull(path, 1, "PT1.1S").Text("//tev:CurrentTime")), begin + 1s);
}

TEST_F(PullPointWait, IsSkippedForANegativeTimeoutOrAZeroLimitWithEvents) {
    auto const path = Subscribe();
    EXPECT_EQ(Pull(path, 1, "-PT1H").status, 200);
    Publish(MakeFieldEvent());
    EXPECT_EQ(Pull(path, 0, "PT1H").status, 200);
}

TEST_F(PullPointWait, LastsUntilTheTimeoutEvenWithAZeroLimit) {
    auto const begin = Clock::now();
    EXPECT_EQ(Pull(Subscribe(), 0, "PT0.3S").status, 200);
    EXPECT_GE(Clock::now() - begin, 300ms);
}

TEST_F(PullPointWait, ReadsTheTimeoutOnlyWithoutQueuedEvents) {
    auto const path = Subscribe();
    Publish(MakeFieldEvent("one"));
    EXPECT_THAT(GetRules(Pull(path, 1, "soon")), ElementsAre("one"));
    EXPECT_THROW(Pull(path, 1, "soon"), std::future_error);
}

TEST_F(PullPointWait, EndsEvenWithAFilteredEvent) {
    auto const path = Subscribe(
        "<tev:Filter><wsnt:TopicExpression>tns1:RuleEngine/LineDetector/Crossed</wsnt:TopicExpression></tev:Filter>");
    auto const reply = BeginToWait(path);
    Publish(MakeFieldEvent("field"));
    EXPECT_THAT(GetRules(GetReply(reply)), IsEmpty());
}

TEST_F(PullPointWait, EndsWithAnEvent) {
    auto const path = Subscribe();
    auto const reply = BeginToWait(path);
    Publish(MakeFieldEvent("one"));
    EXPECT_THAT(GetRules(GetReply(reply)), ElementsAre("one"));
}

TEST_F(PullPointWait, EndsWithAnEventThatAZeroLimitLeavesInTheQueue) {
    auto const path = Subscribe();
    auto const reply = PostPull(path, 0, "PT1H");
    ASSERT_TRUE(Waits(*reply));
    Publish(MakeFieldEvent("one"));
    EXPECT_THAT(GetRules(GetReply(reply)), IsEmpty());
    EXPECT_THAT(GetRules(Pull(path)), ElementsAre("one"));
}

TEST_F(PullPointWait, EndsForEverySubscriptionWithOneEvent) {
    std::vector<Exchange> clients;
    for (int i = 0; i < 4; ++i) clients.push_back(BeginToWait(Subscribe()));
    Publish(MakeFieldEvent("one"));
    for (auto& client : clients) EXPECT_THAT(GetRules(GetReply(client)), ElementsAre("one"));
}

TEST_F(PullPointWait, AcceptsATimeoutBeyondTheClock) {
    for (auto const* timeout : {"P292Y", "P400Y"}) {
        auto const path = Subscribe();
        auto const reply = BeginToWait(path, timeout);
        Publish(MakeFieldEvent("one"));
        EXPECT_THAT(GetRules(GetReply(reply)), ElementsAre("one")) << timeout;
    }
    EXPECT_EQ(Pull(Subscribe(), 1, "-P400Y").status, 200);
}

TEST_F(PullPointWait, EndsOnUnsubscribe) {
    auto const path = Subscribe();
    auto const reply = BeginToWait(path);
    EXPECT_EQ(Unsubscribe(path).status, 200);
    EXPECT_THAT(GetReply(reply), IsNotFound());
}

TEST_F(PullPointWait, EndsWhenTheSubscriptionExpires) {
    auto const path = Subscribe(Termination("PT0.2S"));
    EXPECT_THAT(Pull(path, 1, "PT1H"), IsNotFound());
}

TEST_F(PullPointWait, EndsInTheSameWaysAfterMoreThanASecond) {
    auto const path = Subscribe();
    auto const other = Subscribe();
    auto const withEvent = BeginToWait(path);
    auto const withoutSubscription = BeginToWait(other);
    std::this_thread::sleep_for(1100ms); // then a pull gives memory back
    ASSERT_TRUE(OthersSleep(2));
    EXPECT_EQ(Unsubscribe(other).status, 200);
    EXPECT_THAT(GetReply(withoutSubscription), IsNotFound());
    Publish(MakeFieldEvent("late"));
    EXPECT_THAT(GetRules(GetReply(withEvent)), ElementsAre("late"));
    auto const withManager = BeginToWait(path);
    std::this_thread::sleep_for(1100ms);
    ReplaceManager();
    EXPECT_THAT(GetRules(GetReply(withManager)), IsEmpty());
}

TEST_F(PullPointWait, OfMoreThanASecondGivesMemoryBack) {
    using service::onvif::EventsService;
    using service::onvif::Subscription;
    engine.SetEnabled(false);
    auto const context = service::onvif::MakeSoapContext();
    EventsService service(context.get(), service::onvif::URIBase(80, false), &engine, {});
    auto const id = Subscription::Create(std::chrono::system_clock::now() + 1h, {});
    std::snprintf(context->path, sizeof(context->path), "/Subscription?Idx=%d", id);
    _tev__PullMessages request;
    request.Timeout = "PT1H";
    request.MessageLimit = 1;
    _tev__PullMessagesResponse response;
    auto const before = CountResidentPages(context.get());
    auto pull = std::async(std::launch::async, [&] { return service.PullMessages(&request, response); });
    EXPECT_TRUE(Eventually([&] { return CountResidentPages(context.get()) + 8 <= before; }));
    Subscription::End(id);
    EXPECT_NE(pull.get(), SOAP_OK);
}

TEST_F(PullPointWait, OfTwoClientsEndsForOneOnASingleEvent) {
    auto const path = Subscribe();
    std::vector<Exchange> clients;
    for (int i = 0; i < 2; ++i) clients.push_back(BeginToWait(path));
    Publish(MakeFieldEvent("one"));
    ASSERT_TRUE(OthersSleep(1));
    auto answer = clients[0]->GetData();
    if (answer.GetState() == web::response::State::NotReady) {
        std::swap(clients[0], clients[1]);
        answer = clients[0]->GetData();
    }
    EXPECT_THAT(GetRules(ToReply(answer)), ElementsAre("one"));
    EXPECT_TRUE(IsPending(*clients[1]));
    Publish(MakeFieldEvent("two"));
    EXPECT_THAT(GetRules(GetReply(clients[1])), ElementsAre("two"));
}

TEST_F(PullPointWait, EndsForEveryClientWhenTheSubscriptionExpires) {
    auto const path = Subscribe();
    std::vector<Exchange> clients;
    for (int i = 0; i < 4; ++i) clients.push_back(BeginToWait(path));
    EXPECT_EQ(Renew(path, "2001-01-01T00:00:00Z").status, 200);
    for (auto& client : clients) EXPECT_THAT(GetReply(client), IsNotFound());
}

TEST_F(PullPointWait, ContinuesWhenAnotherSubscriptionEnds) {
    auto const path = Subscribe();
    auto const other = Subscribe();
    auto const client = BeginToWait(path);
    EXPECT_EQ(Unsubscribe(other).status, 200);
    EXPECT_TRUE(Waits(*client));
    Publish(MakeFieldEvent("one"));
    EXPECT_THAT(GetRules(GetReply(client)), ElementsAre("one"));
}

TEST_F(PullPointWait, ContinuesAfterRenewAndReportsTheOldTerminationTime) {
    auto const path = Subscribe(Termination("2061-07-28T12:30:00Z"));
    auto const client = BeginToWait(path);
    EXPECT_EQ(Renew(path, "2071-07-28T12:30:00Z").status, 200);
    EXPECT_TRUE(Waits(*client));
    Publish(MakeFieldEvent("one"));
    auto const reply = GetReply(client);
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
    EXPECT_LT(Clock::now() - begin, 60s) << "the manager waited for the pulls";
    for (auto& reply : replies) EXPECT_EQ(WaitFor(*reply).GetStatus(), protocol::network::http::response::Status::Ok);
}

TEST_F(PullPointWait, EndsWithItsManagerAsAtTheTimeout) {
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

TEST_F(PullPointWait, ContinuesInOneManagerWhenAnotherEnds) {
    auto const path = Subscribe();
    Manager();
    auto first = std::make_unique<service::onvif::Manager>(&engine, root, channelInfo, identity);
    auto const ended = first->Post(MakePull(Subscribe(), 1, "PT1H"));
    auto const reply = PostPull(path, 1, "PT1H");
    ASSERT_TRUE(OthersSleep(2));
    first.reset();
    EXPECT_EQ(ended->GetData().GetState(), web::response::State::Complete);
    ASSERT_TRUE(OthersSleep(1)) << "the remaining exchange did not go back to sleep";
    EXPECT_EQ(reply->GetData().GetState(), web::response::State::NotReady);
    Publish(MakeFieldEvent("one"));
    EXPECT_THAT(GetRules(ToReply(WaitFor(*reply))), ElementsAre("one"));
}

} // namespace
} // namespace zarn::test
