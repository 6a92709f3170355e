#include "gsoap_client.h"
#include "support/eventually.h"
#include "support/host_process.h"
#include "support/pull_point_client.h"

#include <gmock/gmock.h>
#include <soapPullPointSubscriptionBindingProxy.h>

#include <chrono>
#include <future>
#include <stdexcept>
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
using Proxy = PullPointSubscriptionBindingProxy;

/// The value of an element's attribute, or a note that it is missing.
std::string GetAttribute(soap_dom_element const& element, char const* name) {
    for (auto const* attribute = element.atts; attribute; attribute = attribute->next) {
        if (attribute->name && attribute->name == std::string(name)) return attribute->text ? attribute->text : "";
    }
    return std::string("no ") + name;
}

/// The items of "tt:Source" or "tt:Data" in a message, as "Name=Value".
std::vector<std::string> GetItems(wsnt__NotificationMessageHolderType const& holder, char const* list) {
    std::vector<std::string> items;
    for (auto const* part = holder.Message.__any.elts; part; part = part->next) {
        if (part->name != std::string(list)) continue;
        for (auto const* item = part->elts; item; item = item->next) {
            items.push_back(GetAttribute(*item, "Name") + '=' + GetAttribute(*item, "Value"));
        }
    }
    return items;
}

/// gSOAP reads the topic into a different member than the one it writes.
std::string GetTopic(wsnt__NotificationMessageHolderType const& holder) {
    auto const* const text = holder.Topic ? soap_elt_get_text(&holder.Topic->__mixed) : nullptr;
    return text ? text : "no topic";
}

/// A generated events client and a host to which the test posts events.
class GeneratedEventsClient : public testing::Test {
protected:
    template <class Response, class Request>
    Response Ask(std::string const& address, int (Proxy::*operation)(Request*, Response&), Request request = {}) {
        Response response;
        int const status = client.Call(address, operation, std::move(request), response);
        if (status != SOAP_OK) throw std::runtime_error("gSOAP's status is " + std::to_string(status));
        return response;
    }

    /// topics       topics of the filter
    /// termination  a time or a duration
    _tev__CreatePullPointSubscriptionResponse Subscribe(std::string const& topics, std::string termination) {
        _tev__CreatePullPointSubscription request;
        wsnt__FilterType filter;
        auto& expression = filter.__any.emplace_back(client.GetContext());
        soap_elt_set(&expression, "http://docs.oasis-open.org/wsn/b-2", "TopicExpression");
        soap_elt_text(&expression, topics.c_str());
        soap_att_text(soap_att(&expression, nullptr, "Dialect"),
                      "http://www.onvif.org/ver10/tev/topicExpression/ConcreteSet");
        request.Filter = &filter;
        request.InitialTerminationTime = &termination;
        return Ask(service, &Proxy::CreatePullPointSubscription, request);
    }

    _tev__PullMessagesResponse Pull(std::string const& address, std::string const& timeout) {
        _tev__PullMessages request;
        request.Timeout = timeout;
        request.MessageLimit = 10;
        return Ask(address, &Proxy::PullMessages, request);
    }

    HostProcess host;
    std::string service = host.GetUrl() + "/onvif/events_service";
    GsoapClient client{host.GetPassword()};
    PullPointClient program{host};
};

TEST_F(GeneratedEventsClient, ReadsTheTopics) {
    auto const properties = Ask(service, &Proxy::GetEventProperties);
    EXPECT_FALSE(properties.wsnt__FixedTopicSet);
    EXPECT_THAT(properties.wsnt__TopicExpressionDialect,
                ElementsAre("http://docs.oasis-open.org/wsn/t-1/TopicExpression/Concrete",
                            "http://www.onvif.org/ver10/tev/topicExpression/ConcreteSet"));
    std::vector<std::string> families;
    ASSERT_EQ(properties.wstop__TopicSet->__any.size(), 2U);
    for (auto const* family = properties.wstop__TopicSet->__any[0].elts; family; family = family->next) {
        families.emplace_back(family->name);
    }
    EXPECT_THAT(families, ElementsAre("FieldDetector", "LineDetector", "LoiteringDetector", "CountAggregation"));
}

TEST_F(GeneratedEventsClient, SubscribesAndPullsTheFilteredEvents) {
    auto const begin = std::chrono::steady_clock::now();
    auto const created =
        Subscribe("tns1:RuleEngine/LineDetector/Crossed|tns1:RuleEngine/CountAggregation/Counter", "PT90S");
    auto const elapsed = std::chrono::ceil<std::chrono::seconds>(std::chrono::steady_clock::now() - begin).count();
    EXPECT_THAT(created.wsnt__TerminationTime - created.wsnt__CurrentTime, AllOf(Ge(90 - elapsed), Le(90)));
    std::string const address = created.SubscriptionReference.Address;
    program.Post(R"([
        {"type": "enter", "name": "field", "zone": {"type": "field"}},
        {"type": "presence", "name": "Tür", "start": "2026-01-31T12:00:00.250Z", "channel": 2,
         "zone": {"type": "line"}, "objects": [{"id": 12, "class": "person"}, {"id": 3}]},
        {"type": "count", "name": "count", "count": -4}])");
    auto const pulled = Pull(address, "PT0S");
    EXPECT_EQ(pulled.TerminationTime, created.wsnt__TerminationTime);
    ASSERT_EQ(pulled.wsnt__NotificationMessage.size(), 2U);
    auto const& line = *pulled.wsnt__NotificationMessage[0];
    EXPECT_EQ(GetTopic(line), "tns1:RuleEngine/LineDetector/Crossed");
    EXPECT_EQ(line.Topic->Dialect, "http://www.onvif.org/ver10/tev/topicExpression/ConcreteSet");
    EXPECT_EQ(GetAttribute(line.Message.__any, "UtcTime"), "2026-01-31T12:00:00Z");
    EXPECT_THAT(GetItems(line, "tt:Source"), ElementsAre("VideoSource=channels.2", "Rule=Tür"));
    EXPECT_THAT(GetItems(line, "tt:Data"), ElementsAre("ObjectId=3 12 ", "ClassTypes=unclassified person "));
    auto const& count = *pulled.wsnt__NotificationMessage[1];
    EXPECT_EQ(GetTopic(count), "tns1:RuleEngine/CountAggregation/Counter");
    EXPECT_THAT(GetItems(count, "tt:Data"), ElementsAre("ObjectId=", "Count=-4"));
    EXPECT_THAT(Pull(address, "PT0S").wsnt__NotificationMessage, IsEmpty());
}

TEST_F(GeneratedEventsClient, WaitsForAPostedEvent) {
    std::string const address =
        Subscribe("tns1:RuleEngine/FieldDetector/ObjectsInside", "PT1H").SubscriptionReference.Address;
    auto pulled = std::async(std::launch::async, [&] { return Pull(address, "PT1H"); });
    // Two exchanges: the pull and the health request.
    EXPECT_TRUE(Eventually([&] { return host.GetHealth().at("listeners").at("web").at("exchanges") == 2; }));
    EXPECT_EQ(pulled.wait_for(0s), std::future_status::timeout);
    program.Post(MakeEvent("Gate"));
    auto const messages = pulled.get().wsnt__NotificationMessage;
    ASSERT_EQ(messages.size(), 1U);
    EXPECT_THAT(GetItems(*messages[0], "tt:Source"), ElementsAre("VideoSource=channels.4294967295", "Rule=Gate"));
}

TEST_F(GeneratedEventsClient, GetsAFaultWhenItsSubscriptionExpiresWhileWaiting) {
    auto const begin = std::chrono::steady_clock::now();
    std::string const address = Subscribe("", "PT1S").SubscriptionReference.Address;
    _tev__PullMessages request;
    request.Timeout = "PT1M";
    request.MessageLimit = 10;
    _tev__PullMessagesResponse messages;
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(client.Call(address, &Proxy::PullMessages, request, messages), SOAP_CLI_FAULT);
        EXPECT_STREQ(soap_fault_string(client.GetContext()), "Subscription ID not found");
        EXPECT_STREQ(soap_fault_subcode(client.GetContext()), "ter:InvalidArgVal");
        auto const elapsed = std::chrono::steady_clock::now() - begin;
        EXPECT_THAT(elapsed, AllOf(Ge(900ms), Le(50s)));
    }
    Ask(address, &Proxy::Unsubscribe);
}

TEST_F(GeneratedEventsClient, RenewsAndUnsubscribes) {
    std::string const address =
        Subscribe("tns1:RuleEngine/FieldDetector/ObjectsInside", "2061-07-28T12:30:00Z").SubscriptionReference.Address;
    std::string termination = "PT2M";
    _wsnt__Renew renewal;
    renewal.TerminationTime = &termination;
    auto const renewed = Ask(address, &Proxy::Renew, renewal);
    ASSERT_NE(renewed.CurrentTime, nullptr);
    EXPECT_EQ(renewed.TerminationTime - *renewed.CurrentTime, 120);
    EXPECT_EQ(Pull(address, "PT0S").TerminationTime, renewed.TerminationTime);
    Ask(address, &Proxy::Unsubscribe);
    Ask(address, &Proxy::Unsubscribe);
    _wsnt__RenewResponse response;
    EXPECT_EQ(client.Call(address, &Proxy::Renew, renewal, response), SOAP_CLI_FAULT);
    EXPECT_STREQ(soap_fault_string(client.GetContext()), "Subscription ID not found");
    EXPECT_STREQ(soap_fault_subcode(client.GetContext()), "ter:InvalidArgVal");
    _tev__PullMessagesResponse messages;
    EXPECT_EQ(client.Call(service, &Proxy::PullMessages, {}, messages), SOAP_CLI_FAULT);
    EXPECT_STREQ(soap_fault_string(client.GetContext()), "Unable to extract subscription ID");
}

TEST_F(GeneratedEventsClient, GetsNoSubscriptionWithAWrongPassword) {
    GsoapClient stranger("wrong");
    _tev__CreatePullPointSubscriptionResponse response;
    EXPECT_EQ(stranger.Call(service, &Proxy::CreatePullPointSubscription, {}, response), 401);
}

} // namespace
} // namespace zarn::test
