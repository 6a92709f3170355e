#include "support/broker.h"
#include "support/eventually.h"
#include "support/host_process.h"
#include "support/pull_point_client.h"
#include "support/raw_connection.h"

#include <boost/json/parse.hpp>
#include <gmock/gmock.h>

#include <csignal>
#include <memory>
#include <string>
#include <vector>

namespace zarn::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;

/// Waits until the host has two exchanges: the client's request and the query that counts them.
bool AwaitOtherExchange(HostProcess const& host) {
    return Eventually([&] { return host.GetHealth().at("listeners").at("web").at("exchanges") == 2; });
}

std::string Filter(std::string const& topics) {
    return "<tev:Filter><wsnt:TopicExpression Dialect='http://www.onvif.org/ver10/tev/topicExpression/ConcreteSet'>" +
           topics + "</wsnt:TopicExpression></tev:Filter>";
}

class PullPointOverHttp : public testing::Test {
protected:
    HostProcess host;
    PullPointClient client{host};
};

TEST_F(PullPointOverHttp, StartsIdsAtOneInANewProcess) {
    EXPECT_THAT(client.Subscribe(), MatchesRegex("http://[0-9.]+:" + std::to_string(host.GetPort()) +
                                                 "/onvif/events_service/Subscription\\?Idx=1"));
    EXPECT_THAT(client.Subscribe(), HasSubstr("?Idx=2"));
}

TEST_F(PullPointOverHttp, ReportsQueuedEventsInTheStatus) {
    auto const address = client.Subscribe();
    auto const status = [&] { return host.GetHealth().at("events").at("subscriptions"); };
    EXPECT_EQ(status(), boost::json::parse(R"({"count": 1, "queued": 0, "list": [{"id": 1, "queued": 0}]})"));
    EXPECT_EQ(client.Post(MakeEvent("Gate")).status, 202);
    EXPECT_EQ(status(), boost::json::parse(R"({"count": 1, "queued": 1, "list": [{"id": 1, "queued": 1}]})"));
    EXPECT_THAT(GetRules(client.Pull(address)), ElementsAre("Gate"));
    EXPECT_EQ(status().at("queued"), 0);
    EXPECT_EQ(client.Unsubscribe(address).status, 200);
    EXPECT_EQ(status(), boost::json::parse(R"({"count": 0, "queued": 0, "list": []})"));
}

TEST_F(PullPointOverHttp, RejectsAnInvalidTerminationTimeAndCreatesNothing) {
    EXPECT_EQ(client.TrySubscribe("<tev:InitialTerminationTime>-PT5S</tev:InitialTerminationTime>").status, 500);
    EXPECT_EQ(host.GetHealth().at("events").at("subscriptions").at("count"), 0);
}

TEST(PullPointOverHttpOfAHost, WarnsWhenTooManyEventsAreQueued) {
    HostProcess host({.arguments = {"--set", "settings.events.queued_warning=1"}});
    PullPointClient const client(host);
    client.Subscribe();
    EXPECT_EQ(client.Post(MakeEvents(2)).status, 202);
    EXPECT_TRUE(host.GetProcess().WaitForLog("2 events wait in 1 subscriptions")) << host.GetProcess().GetLog();
}

TEST_F(PullPointOverHttp, AnswersAWaitingClientWithThePostedEvent) {
    auto call = client.PullLater(client.Subscribe(), "PT1H");
    EXPECT_TRUE(AwaitOtherExchange(host));
    EXPECT_EQ(client.Post(MakeEvent("Gate")).status, 202);
    auto const answer = call.Get();
    EXPECT_EQ(answer.status, 200);
    EXPECT_THAT(GetRules(answer), ElementsAre("Gate"));
    EXPECT_EQ(GetText(answer, "wsnt:Topic"), "tns1:RuleEngine/FieldDetector/ObjectsInside");
}

TEST_F(PullPointOverHttp, DeliversAWholeListInOrder) {
    auto const first = client.Subscribe();
    auto const second = client.Subscribe();
    auto call = client.PullLater(first, "PT1H");
    EXPECT_TRUE(AwaitOtherExchange(host));
    EXPECT_EQ(client.Post(MakeEvents(500)).status, 202);
    // All events are queued once the request is accepted; a waiting pull receives the first ones earlier.
    EXPECT_EQ(GetRules(client.Pull(second, 1000)), MakeNames(500));
    auto rules = GetRules(call.Get());
    auto const more = client.PullRules(first, 500 - rules.size());
    rules.insert(rules.end(), more.begin(), more.end());
    EXPECT_EQ(rules, MakeNames(500));
}

TEST_F(PullPointOverHttp, DeliversNoEventOfARefusedList) {
    auto const address = client.Subscribe();
    EXPECT_EQ(client.Post('[' + MakeEvent("one") + R"(, {"type": 1}])").status, 400);
    EXPECT_THAT(GetRules(client.Pull(address)), IsEmpty());
}

TEST_F(PullPointOverHttp, DeliversOnlyTheTopicsOfItsFilter) {
    auto const address = client.Subscribe(Filter("tns1:RuleEngine/LineDetector/Crossed"
                                                 "|tns1:RuleEngine/CountAggregation/Counter"));
    EXPECT_EQ(client
                  .Post(R"([{"type": "presence", "name": "field", "zone": {"type": "field"}},
                            {"type": "presence", "name": "line", "zone": {"type": "line"}},
                            {"type": "count", "name": "count", "count": -3}])")
                  .status,
              202);
    EXPECT_THAT(GetRules(client.Pull(address)), ElementsAre("line", "count"));
}

TEST_F(PullPointOverHttp, IsRenewedAndUnsubscribedAtItsAddress) {
    auto const address = client.Subscribe("<tev:InitialTerminationTime>PT1M</tev:InitialTerminationTime>");
    auto const renewed = client.Renew(address, "2061-07-28T12:30:00Z");
    EXPECT_EQ(renewed.status, 200);
    EXPECT_EQ(GetText(renewed, "wsnt:TerminationTime"), "2061-07-28T12:30:00Z");
    EXPECT_EQ(GetText(client.Pull(address), "tev:TerminationTime"), "2061-07-28T12:30:00Z");
    auto call = client.PullLater(address, "PT1H");
    EXPECT_TRUE(AwaitOtherExchange(host));
    EXPECT_EQ(client.Unsubscribe(address).status, 200);
    for (auto const& answer : {call.Get(), client.Pull(address), client.Renew(address, "PT1M")}) {
        EXPECT_EQ(answer.status, 400);
        EXPECT_THAT(answer.body, HasSubstr("Subscription ID not found"));
    }
    EXPECT_EQ(client.Unsubscribe(address).status, 200);
}

TEST_F(PullPointOverHttp, EndsAtItsTerminationTime) {
    auto const address = client.Subscribe("<tev:InitialTerminationTime>PT0.3S</tev:InitialTerminationTime>");
    auto const answer = client.Pull(address, 1, "PT1H");
    EXPECT_EQ(answer.status, 400);
    EXPECT_THAT(answer.body, HasSubstr("Subscription ID not found"));
}

class PullPointOverMqtt : public testing::Test {
protected:
    std::string GetState() const {
        return std::string(host.GetHealth().at("events").at("mqtt").at("state").as_string());
    }

    bool AwaitState(std::string const& state) const {
        return Eventually([&] { return GetState() == state; });
    }

    Broker broker;
    HostProcess host{{.configuration = R"({"settings": {"web_port": 0, "rtsp_port": 0, "events": {"mqtt":
        {"enabled": true, "topic": "events", "client_id": "a test's host", "url": ")" +
                                       broker.GetUrl() + R"("}}}})"}};
    PullPointClient client{host};
};

TEST_F(PullPointOverMqtt, AnswersAWaitingClientWithThePublishedEvent) {
    ASSERT_TRUE(AwaitState("connected"));
    auto call = client.PullLater(client.Subscribe(), "PT1H");
    EXPECT_TRUE(AwaitOtherExchange(host));
    broker.Publish("events", MakeEvent("Gate"));
    EXPECT_THAT(GetRules(call.Get()), ElementsAre("Gate"));
}

TEST_F(PullPointOverMqtt, DeliversWhatTheBrokerQueuedWhileDisconnected) {
    ASSERT_TRUE(AwaitState("connected"));
    auto const address = client.Subscribe();
    broker.Stop();
    ASSERT_TRUE(AwaitState("waiting"));
    // Suspended, so that the broker cannot deliver.
    host.GetProcess().Signal(SIGSTOP);
    broker.Start();
    for (auto const& name : MakeNames(3)) broker.Publish("events", MakeEvent(name));
    broker.Publish("events", '[' + MakeEvent("3") + ", " + MakeEvent("4") + ']');
    broker.Stop();
    broker.Start();
    host.GetProcess().Signal(SIGCONT);
    EXPECT_EQ(client.PullRules(address, 5), MakeNames(5));
    broker.Publish("events", MakeEvent("after"));
    EXPECT_THAT(client.PullRules(address, 1), ElementsAre("after"));
}

TEST(PullPointAtTheEndOfTheHost, AnswersAHundredWaitingClientsWithoutDelayingTheStop) {
    HostProcess host({.arguments = {"--set", "settings.authentication.enabled=false"}});
    PullPointClient const client(host, PullPointClient::Login::None);
    auto const countExchanges = [&] {
        return host.GetHealth().at("listeners").at("web").at("exchanges").to_number<int>();
    };
    auto const idle = countExchanges();
    std::vector<std::unique_ptr<RawConnection>> clients;
    for (int i = 0; i < 10; ++i) {
        auto const address = client.Subscribe();
        for (int j = 0; j < 10; ++j) {
            clients.push_back(std::make_unique<RawConnection>(host.GetPort()));
            clients.back()->Send(MakePullRequest(address, "PT1H"));
        }
    }
    ASSERT_TRUE(Eventually([&] { return countExchanges() == idle + 100; })) << countExchanges();
    host.ExpectStop();
    for (auto const& waiting : clients) {
        auto const response = waiting->Read();
        EXPECT_EQ(response.status, 200U);
        EXPECT_THAT(response.body, HasSubstr("PullMessagesResponse"));
    }
}

TEST(PullPointAtTheEndOfTheHost, StopsInTimeAmidEventsAndExpiringSubscriptions) {
    Broker const broker;
    HostProcess host({.configuration = R"({"settings": {"web_port": 0, "rtsp_port": 0, "events": {"mqtt":
        {"enabled": true, "topic": "events", "url": ")" +
                                       broker.GetUrl() + R"("}}}})"});
    ASSERT_TRUE(Eventually([&] { return host.GetHealth().at("events").at("mqtt").at("state") == "connected"; }));
    PullPointClient const client(host);
    for (auto const* time : {"PT1H", "PT0.2S", "PT0.3S", "PT0.4S", "PT0.5S", "PT0.6S"}) {
        client.Subscribe(std::string("<tev:InitialTerminationTime>") + time + "</tev:InitialTerminationTime>");
    }
    broker.PublishNumbered("events", 2000);
    host.ExpectStop();
}

} // namespace
} // namespace zarn::test
