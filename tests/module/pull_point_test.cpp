#include "pull_point_fixture.h"
#include "support/eventually.h"

#include <zarn/chrono/iso8601.h>
#include <zarn/logging/capture.h>
#include <zarn/meta/data/count/value.h>
#include <zarn/meta/data/zone.h>
#include <zarn/onvif/events/subscription_gauge.h>

#include <gmock/gmock.h>

#include <chrono>
#include <cstddef>
#include <future>
#include <optional>
#include <string>

namespace zarn::test {
namespace {

using namespace std::chrono_literals;
using testing::AllOf;
using testing::ElementsAre;
using testing::Ge;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Le;
using testing::MatchesRegex;

auto const CannotExtractId = IsFault("Sender", "Unable to extract subscription ID", {"ter:InvalidArgs"});

std::string Filter(std::string const& content) { return "<tev:Filter>" + content + "</tev:Filter>"; }

std::string Topics(std::string const& expression) {
    return "<wsnt:TopicExpression Dialect='http://www.onvif.org/ver10/tev/topicExpression/ConcreteSet'>" + expression +
           "</wsnt:TopicExpression>";
}

std::shared_ptr<meta::data::Event> MakeCount(std::string const& name) {
    auto event = MakeEvent("count", name);
    event->Emplace<meta::data::count::Value>(3);
    return event;
}

std::shared_ptr<meta::data::Event> MakeCrossing(std::string const& name) {
    auto event = MakeEvent("direction", name);
    event->Emplace<meta::data::Zone>(meta::data::Zone::Line);
    return event;
}

class PullPoint : public PullPointFixture {
protected:
    Reply Create(std::string const& content) {
        return Ask("<tev:CreatePullPointSubscription>" + content + "</tev:CreatePullPointSubscription>");
    }

    static int GetId(std::string const& path) { return std::stoi(path.substr(path.rfind('=') + 1)); }

    /// Expects that the answer holds the current time and a termination time `span` later, both truncated to seconds.
    template <class Asking>
    static void ExpectLifetime(std::chrono::seconds span, Asking const& ask, std::string const& what = {}) {
        auto const begin = std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now());
        Reply const reply = ask();
        auto const end = std::chrono::system_clock::now();
        auto const read = [&](char const* xpath) { return chrono::FromIso8601(reply.Text(xpath)); };
        EXPECT_THAT(read("//*[local-name()='CurrentTime']"), AllOf(Ge(begin), Le(end))) << what;
        EXPECT_THAT(read("//*[local-name()='TerminationTime']"), AllOf(Ge(begin + span), Le(end + span))) << what;
    }

    /// Pulls until the subscription has ended; false when it does not end.
    bool EndsSoon(std::string const& path) {
        return Eventually([&] { return Pull(path).status != 200; });
    }
};

TEST_F(PullPoint, LastsFiveMinutesByDefault) {
    auto const begin = std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now());
    auto const reply = Create("");
    EXPECT_EQ(reply.status, 200);
    EXPECT_THAT(chrono::FromIso8601(reply.Text("//wsnt:TerminationTime")),
                AllOf(Ge(begin + 300s), Le(std::chrono::system_clock::now() + 300s)));
    EXPECT_THAT(chrono::FromIso8601(reply.Text("//wsnt:CurrentTime")),
                AllOf(Ge(begin), Le(std::chrono::system_clock::now())));
    ExpectLifetime(10s, [&] { return Create(Termination("PT10S")); });
    ExpectLifetime(26h, [&] { return Create(Termination("P1DT2H")); });
}

TEST_F(PullPoint, LastsUntilAnAbsoluteTime) {
    EXPECT_EQ(Create(Termination("2061-07-28T12:30:00Z")).Text("//wsnt:TerminationTime"), "2061-07-28T12:30:00Z");
    EXPECT_EQ(Create(Termination("2061-07-28T12:30:00.75+02:00")).Text("//wsnt:TerminationTime"),
              "2061-07-28T10:30:00Z");
    EXPECT_EQ(Create(Termination("1969-12-31T23:59:58.5Z")).Text("//wsnt:TerminationTime"), "1969-12-31T23:59:59Z");
}

TEST_F(PullPoint, CapsItsLifetimeAtTheEndOfTheClock) {
    for (auto const* text : {"P292Y", "P400Y", "9999-12-31T23:59:59Z"}) {
        auto const reply = Create(Termination(text));
        EXPECT_EQ(reply.Text("//wsnt:TerminationTime"), "2262-04-11T23:47:16Z") << text;
        auto const address = reply.Text("//wsa5:Address");
        auto const path = address.substr(address.find("/onvif/"));
        EXPECT_EQ(Pull(path).status, 200) << text;
        EXPECT_EQ(Renew(path, text).Text("//wsnt:TerminationTime"), "2262-04-11T23:47:16Z") << text;
        EXPECT_EQ(Pull(path).status, 200) << text;
    }
}

TEST_F(PullPoint, HasAscendingIds) {
    auto const first = Subscribe();
    EXPECT_THAT(first, MatchesRegex("/onvif/events_service/Subscription\\?Idx=[0-9]+"));
    EXPECT_EQ(GetId(Subscribe()), GetId(first) + 1);
    Unsubscribe(first);
    EXPECT_EQ(GetId(Subscribe()), GetId(first) + 2);
}

TEST_F(PullPoint, HasAnAddressBelowTheBaseUri) {
    EXPECT_THAT(Create("").Text("//wsa5:Address"),
                MatchesRegex("http://[0-9.]+:8080/onvif/events_service/Subscription\\?Idx=[0-9]+"));
    Manager().UpdateSSLState(true);
    EXPECT_THAT(Create("").Text("//wsa5:Address"), HasSubstr("https://"));
}

constexpr char Action[] = "//SOAP-ENV:Header/wsa5:Action";

TEST_F(PullPoint, AnswersWithItsAction) {
    EXPECT_EQ(Create("").Text(Action),
              "http://www.onvif.org/ver10/events/wsdl/EventPortType/CreatePullPointSubscriptionResponse");
    EXPECT_EQ(Pull(Subscribe()).Text(Action),
              "http://www.onvif.org/ver10/events/wsdl/PullPointSubscription/PullMessagesResponse");
    EXPECT_EQ(Pull("/onvif/events_service").Text(Action),
              "http://www.onvif.org/ver10/events/wsdl/PullPointSubscription/PullMessagesResponse");
    EXPECT_FALSE(Renew(Subscribe(), "PT10S").Has("//wsa5:Action"));
}

TEST_F(PullPoint, AnswersWithItsActionEvenWithoutCredentials) {
    Sending const anonymous{.path = Subscribe(), .authenticated = false};
    EXPECT_EQ(Ask("<tev:CreatePullPointSubscription/>", anonymous).Text(Action),
              "http://www.onvif.org/ver10/events/wsdl/EventPortType/CreatePullPointSubscriptionResponse");
    EXPECT_EQ(Ask("<tev:PullMessages/>", anonymous).Text(Action),
              "http://www.onvif.org/ver10/events/wsdl/PullPointSubscription/PullMessagesResponse");
    EXPECT_FALSE(Ask("<wsnt:Renew/>", anonymous).Has(Action));
    EXPECT_FALSE(Ask("<wsnt:Unsubscribe/>", anonymous).Has(Action));
}

TEST_F(PullPoint, AnswersWithItsActionWhenTheRequestHasOne) {
    Sending const withAction{.path = Subscribe(),
                             .header = "<a:Action>a</a:Action><a:MessageID>urn:uuid:1</a:MessageID>"};
    EXPECT_EQ(Ask("<tev:PullMessages><tev:Timeout>PT0S</tev:Timeout></tev:PullMessages>", withAction).Text(Action),
              "http://www.onvif.org/ver10/events/wsdl/PullPointSubscription/PullMessagesResponse");
    EXPECT_FALSE(Ask("<wsnt:Renew/>", withAction).Has(Action));
    EXPECT_FALSE(Ask("<wsnt:Unsubscribe/>", withAction).Has(Action));
    auto const reply =
        Ask("<tev:CreatePullPointSubscription/>",
            {.header = "<a:Action>a</a:Action><a:MessageID>urn:uuid:1</a:MessageID><a:To>urn:long-long</a:To>"});
    EXPECT_EQ(reply.Text(Action),
              "http://www.onvif.org/ver10/events/wsdl/EventPortType/CreatePullPointSubscriptionResponse");
    EXPECT_EQ(reply.Text("//SOAP-ENV:Header/wsa5:RelatesTo"), "urn:uuid:1");
}

TEST_F(PullPoint, RequiresCredentials) {
    auto const path = Subscribe();
    Publish(MakeFieldEvent("one"));
    for (std::string const operation :
         {"<tev:CreatePullPointSubscription/>",
          "<tev:PullMessages><tev:Timeout>PT0S</tev:Timeout><tev:MessageLimit>1</tev:MessageLimit></tev:PullMessages>",
          "<wsnt:Renew/>", "<wsnt:Unsubscribe/>"}) {
        for (auto const& at : {path, std::string("/onvif/events_service")}) {
            EXPECT_THAT(Ask(operation, {.path = at, .authenticated = false}), IsChallenge("zarnsuite.example"))
                << operation;
            EXPECT_THAT(Ask(operation, {.path = at, .password = "wrong"}), IsChallenge("zarnsuite.example"))
                << operation;
        }
    }
    EXPECT_THAT(GetRules(Pull(path)), ElementsAre("one"));
    EXPECT_EQ(GetId(Subscribe()), GetId(path) + 1);
}

TEST_F(PullPoint, ThrowsForInvalidTerminationTimes) {
    auto const path = Subscribe();
    auto const count = onvif::events::GetSubscriptions().size();
    for (auto const* text : {"P", "-PT5S", "PT5X", "tomorrow", "2026-13-01T00:00:00Z"}) {
        EXPECT_THROW(Create(Termination(text)), std::future_error) << text;
        EXPECT_THROW(Renew(path, text), std::future_error) << text;
    }
    EXPECT_EQ(onvif::events::GetSubscriptions().size(), count) << "a refused request left a subscription behind";
    EXPECT_EQ(GetId(Subscribe()), GetId(path) + 1);
}

TEST_F(PullPoint, UsesTheDefaultForAnEmptyTerminationTime) {
    ExpectLifetime(300s, [&] { return Create(Termination("")); });
    ExpectLifetime(300s, [&] { return Renew(Subscribe(Termination("PT10S")), ""); });
}

TEST_F(PullPoint, IgnoresWhiteSpaceAroundTheTerminationTime) {
    for (auto const* text : {" PT60S", "PT60S ", "\n\t  PT60S\r\n"}) {
        ExpectLifetime(
            60s, [&] { return Create(Termination(text)); }, text);
        ExpectLifetime(
            60s, [&] { return Renew(Subscribe(), text); }, text);
    }
    EXPECT_EQ(Create(Termination("\n  2061-07-28T12:30:00Z\n")).Text("//wsnt:TerminationTime"), "2061-07-28T12:30:00Z");
    ExpectLifetime(300s, [&] { return Create(Termination(" \n ")); });
}

TEST_F(PullPoint, ReportsHowManyEventsAreQueued) {
    auto const path = Subscribe();
    auto const queued = [&] {
        std::optional<std::size_t> count;
        for (auto const& status : onvif::events::GetSubscriptions())
            if (status.id == GetId(path)) count = status.queued;
        return count;
    };
    EXPECT_EQ(queued(), 0U);
    for (auto const* name : {"a", "b", "c"}) Publish(MakeFieldEvent(name));
    EXPECT_EQ(queued(), 3U);
    Pull(path, 1);
    EXPECT_EQ(queued(), 2U);
    Unsubscribe(path);
    EXPECT_EQ(queued(), std::nullopt);
}

TEST_F(PullPoint, ExpiresAtOnceWithATerminationTimeInThePast) {
    EXPECT_TRUE(EndsSoon(Subscribe(Termination("2001-01-01T00:00:00Z"))));
}

TEST_F(PullPoint, FaultsForAnAddressWithoutAnId) {
    for (auto const* path :
         {"/onvif/events_service", "/onvif/events_service/Subscription?Idx=",
          "/onvif/events_service/Subscription?idx=1", "/onvif/events_service/Subscription?Id=1",
          "/onvif/events_service/Subscription?Idx=abc", "/onvif/events_service/Subscription?Idx=-1",
          "/onvif/events_service/Subscription?Idx=2147483648", "/onvif/events_service/Subscription?Idx=-2147483649",
          "/onvif/events_service/Subscription?Idx=99999999999999999999"}) {
        EXPECT_THAT(Pull(path), CannotExtractId) << path;
        EXPECT_THAT(Renew(path, "PT10S"), CannotExtractId) << path;
        EXPECT_EQ(Unsubscribe(path).status, 200) << path;
    }
}

TEST_F(PullPoint, FaultsForAnUnknownId) {
    for (auto const* path :
         {"/onvif/events_service/Subscription?Idx=2147483647", "/onvif/events_service/Subscription?Idx=0",
          "/onvif/events_service/Subscription?Idx=-2147483648"}) {
        EXPECT_THAT(Pull(path), IsNotFound()) << path;
        EXPECT_THAT(Renew(path, "PT10S"), IsNotFound()) << path;
        EXPECT_EQ(Unsubscribe(path).status, 200) << path;
    }
}

TEST_F(PullPoint, FaultsForItsAddressBeforeItReadsATime) {
    std::string const withoutId = "/onvif/events_service";
    std::string const unknown = "/onvif/events_service/Subscription?Idx=2147483647";
    EXPECT_THAT(Renew(withoutId, "tomorrow"), CannotExtractId);
    EXPECT_THAT(Pull(withoutId, 1, "soon"), CannotExtractId);
    EXPECT_THAT(Renew(unknown, "tomorrow"), IsNotFound());
    EXPECT_THAT(Pull(unknown, 1, "soon"), IsNotFound());
}

TEST_F(PullPoint, LogsNothing) {
    auto const path = Subscribe();
    logging::Capture const capture;
    Publish(MakeEvent("no such type"));
    Publish(MakeFieldEvent());
    EXPECT_EQ(Pull(path).status, 200);
    EXPECT_EQ(Renew(path, "PT1M").status, 200);
    EXPECT_EQ(Unsubscribe(path).status, 200);
    EXPECT_THAT(capture.GetLines(), IsEmpty());
}

TEST_F(PullPoint, ReadsTheIdFromTheLeadingDigitsAfterIdx) {
    auto const path = Subscribe();
    auto const id = std::to_string(GetId(path));
    for (auto const& text : {id + "abc", "+" + id, "00" + id, id + "&x=y", id + "?Subscription?Idx=7"}) {
        EXPECT_EQ(Pull("/any/path/Subscription?Idx=" + text).status, 200) << text;
    }
}

TEST_F(PullPoint, DeliversOnlyEventsSinceItsCreation) {
    Publish(MakeFieldEvent("before"));
    auto const path = Subscribe();
    EXPECT_THAT(GetRules(Pull(path)), IsEmpty());
    Publish(MakeFieldEvent("one"));
    Publish(MakeFieldEvent("two"));
    EXPECT_THAT(GetRules(Pull(path)), ElementsAre("one", "two"));
    EXPECT_THAT(GetRules(Pull(path)), IsEmpty());
}

TEST_F(PullPoint, DeliversEveryEventToEverySubscription) {
    auto const first = Subscribe();
    auto const second = Subscribe();
    Publish(MakeFieldEvent("one"));
    EXPECT_THAT(GetRules(Pull(first)), ElementsAre("one"));
    EXPECT_THAT(GetRules(Pull(second)), ElementsAre("one"));
}

TEST_F(PullPoint, ReportsItsTerminationTimeWithEveryPull) {
    auto const path = Subscribe(Termination("2061-07-28T12:30:00Z"));
    auto const reply = Pull(path);
    EXPECT_EQ(reply.Text("//tev:PullMessagesResponse/tev:TerminationTime"), "2061-07-28T12:30:00Z");
    EXPECT_THAT(std::chrono::system_clock::now() -
                    chrono::FromIso8601(reply.Text("//tev:PullMessagesResponse/tev:CurrentTime")),
                AllOf(Ge(0s), Le(60s)));
}

TEST_F(PullPoint, DeliversAtMostTheMessageLimit) {
    auto const path = Subscribe();
    for (auto const* name : {"one", "two", "three"}) Publish(MakeFieldEvent(name));
    EXPECT_THAT(GetRules(Pull(path, 0)), IsEmpty());
    EXPECT_THAT(GetRules(Pull(path, -1)), IsEmpty());
    EXPECT_THAT(GetRules(Pull(path, 1)), ElementsAre("one"));
    EXPECT_THAT(GetRules(Pull(path, 1)), ElementsAre("two"));
    EXPECT_THAT(GetRules(Pull(path)), ElementsAre("three"));
}

TEST_F(PullPoint, DropsEventsWithoutAMessage) {
    auto const path = Subscribe();
    Publish(MakeEvent("presence"));
    Publish(MakeEvent("no such type"));
    Publish(MakeFieldEvent("one"));
    EXPECT_THAT(GetRules(Pull(path, 1)), ElementsAre("one"));
    EXPECT_THAT(GetRules(Pull(path)), IsEmpty());
}

TEST_F(PullPoint, AnswersAtOnceWhenOnlyAnEventWithoutAMessageIsQueued) {
    auto const path = Subscribe();
    Publish(MakeEvent("no such type"));
    EXPECT_THAT(GetRules(Pull(path, 1, "PT1H")), IsEmpty());
}

TEST_F(PullPoint, DeliversOnlyTheTopicsOfItsFilter) {
    auto const path =
        Subscribe(Filter(Topics("tns1:RuleEngine/LineDetector/Crossed|tns1:RuleEngine/CountAggregation/Counter")));
    Publish(MakeFieldEvent("field"));
    Publish(MakeCrossing("line"));
    Publish(MakeCount("count"));
    EXPECT_THAT(GetTopics(Pull(path)),
                ElementsAre("tns1:RuleEngine/LineDetector/Crossed", "tns1:RuleEngine/CountAggregation/Counter"));
    EXPECT_THAT(GetTopics(Pull(path)), IsEmpty());
}

TEST_F(PullPoint, AcceptsAFilterOfAnyLength) {
    std::string many = "tns1:RuleEngine/LineDetector/Crossed" + std::string(400'000, '|');
    for (int i = 0; i < 10'000; ++i) many += "a/topic/" + std::to_string(i) + '|';
    auto const path = Subscribe(Filter(Topics(many + "tns1:RuleEngine/CountAggregation/Counter")));
    Publish(MakeFieldEvent("field"));
    Publish(MakeCrossing("line"));
    Publish(MakeCount("count"));
    EXPECT_THAT(GetRules(Pull(path)), ElementsAre("line", "count"));
    for (int i = 0; i < 100; ++i) EXPECT_EQ(Pull(path).status, 200);
}

TEST_F(PullPoint, DoesNotCountFilteredEventsTowardsTheLimit) {
    auto const path = Subscribe(Filter(Topics("tns1:RuleEngine/LineDetector/Crossed")));
    Publish(MakeFieldEvent("field"));
    Publish(MakeCrossing("first"));
    Publish(MakeCrossing("second"));
    EXPECT_THAT(GetRules(Pull(path, 1)), ElementsAre("first"));
    EXPECT_THAT(GetRules(Pull(path, 1)), ElementsAre("second"));
}

TEST_F(PullPoint, ComparesTopicsExactly) {
    for (auto const* text :
         {"tns1:RuleEngine/FieldDetector/ObjectsInside ", " tns1:RuleEngine/FieldDetector/ObjectsInside",
          "\n\ttns1:RuleEngine/FieldDetector/ObjectsInside", "<![CDATA[ ]]>tns1:RuleEngine/FieldDetector/ObjectsInside",
          "tns1:RuleEngine/FieldDetector/objectsinside", "tns1:RuleEngine//.", "", "|",
          "tns1:RuleEngine/FieldDetector/Grün"}) {
        auto const path = Subscribe(Filter(Topics(text)));
        Publish(MakeFieldEvent("field"));
        EXPECT_THAT(GetRules(Pull(path)), IsEmpty()) << text;
    }
}

TEST_F(PullPoint, UsesTheLastElementOfItsFilter) {
    auto const both = Subscribe(
        Filter(Topics("tns1:RuleEngine/FieldDetector/ObjectsInside") + Topics("tns1:RuleEngine/LineDetector/Crossed")));
    auto const content = Subscribe(Filter(Topics("tns1:RuleEngine/FieldDetector/ObjectsInside") +
                                          "<wsnt:MessageContent Dialect='urn:x'>boolean(1)</wsnt:MessageContent>"));
    auto const none = Subscribe(Filter(""));
    Publish(MakeFieldEvent("field"));
    Publish(MakeCrossing("line"));
    EXPECT_THAT(GetRules(Pull(both)), ElementsAre("line"));
    EXPECT_THAT(GetRules(Pull(content)), IsEmpty());
    EXPECT_THAT(GetRules(Pull(none)), ElementsAre("field", "line"));
}

TEST_F(PullPoint, TakesNoTextBesideTheElementsOfItsFilterForAnExpression) {
    auto const crossing = Topics("tns1:RuleEngine/LineDetector/Crossed");
    auto const behind = Subscribe(Filter(crossing + " tns1:RuleEngine/FieldDetector/ObjectsInside "));
    auto const before = Subscribe(Filter("tns1:RuleEngine/FieldDetector/ObjectsInside" + crossing));
    auto const alone = Subscribe(Filter("tns1:RuleEngine/LineDetector/Crossed"));
    Publish(MakeFieldEvent("field"));
    Publish(MakeCrossing("line"));
    EXPECT_THAT(GetRules(Pull(behind)), ElementsAre("line"));
    EXPECT_THAT(GetRules(Pull(before)), ElementsAre("line"));
    EXPECT_THAT(GetRules(Pull(alone)), ElementsAre("field", "line"));
}

TEST_F(PullPoint, ReadsCommentsSectionsAndReferencesInItsFilterAsXmlDoes) {
    auto const path = Subscribe(Filter(
        Topics("a|<!-- none -->tns1:RuleEngine/<![CDATA[LineDetector]]>/&#67;rossed&#x7C;b") + "<!-- the end -->"));
    Publish(MakeFieldEvent("field"));
    Publish(MakeCrossing("line"));
    EXPECT_THAT(GetRules(Pull(path)), ElementsAre("line"));
}

TEST_F(PullPoint, LetsNothingThroughAFilterElementWithoutText) {
    for (auto const* element :
         {"<wsnt:TopicExpression/>",
          "<wsnt:TopicExpression xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance' xsi:nil='true'/>"}) {
        auto const path = Subscribe(Filter(element));
        Publish(MakeCrossing("line"));
        EXPECT_THAT(GetRules(Pull(path)), IsEmpty()) << element;
    }
}

TEST_F(PullPoint, TakesTheFirstOfTwoFilters) {
    auto const path = Subscribe(Filter(Topics("tns1:RuleEngine/LineDetector/Crossed")) +
                                Filter(Topics("tns1:RuleEngine/FieldDetector/ObjectsInside")));
    Publish(MakeFieldEvent("field"));
    Publish(MakeCrossing("line"));
    EXPECT_THAT(GetRules(Pull(path)), ElementsAre("line"));
}

TEST_F(PullPoint, GivesNothingToAClientThatStatesNoMessageLimit) {
    auto const path = Subscribe();
    Publish(MakeCrossing("line"));
    auto const reply = Ask("<tev:PullMessages><tev:Timeout>PT0S</tev:Timeout></tev:PullMessages>", {.path = path});
    EXPECT_EQ(reply.status, 200);
    EXPECT_THAT(GetRules(reply), IsEmpty());
    EXPECT_THAT(GetRules(Pull(path)), ElementsAre("line"));
}

TEST_F(PullPoint, LeavesLoiteringBehindTheLastCountedMessageForTheNextPull) {
    auto const path = Subscribe();
    Publish(MakeCrossing("first"));
    Publish(MakeEvent("dwell", "dwell"));
    Publish(MakeCrossing("second"));
    EXPECT_THAT(GetRules(Pull(path, 1)), ElementsAre("first"));
    EXPECT_THAT(GetRules(Pull(path, 1)), ElementsAre("dwell", "second"));
}

TEST_F(PullPoint, IgnoresDialectAndElementNameOfItsFilter) {
    auto const dialect =
        Subscribe(Filter("<wsnt:TopicExpression Dialect='urn:x'>a||tns1:RuleEngine/LineDetector/Crossed"
                         "</wsnt:TopicExpression>"));
    auto const content = Subscribe(Filter("<wsnt:MessageContent Dialect='urn:x'>tns1:RuleEngine/LineDetector/Crossed"
                                          "</wsnt:MessageContent>"));
    Publish(MakeFieldEvent("field"));
    Publish(MakeCrossing("line"));
    EXPECT_THAT(GetRules(Pull(dialect)), ElementsAre("line"));
    EXPECT_THAT(GetRules(Pull(content)), ElementsAre("line"));
}

TEST_F(PullPoint, DeliversLoiteringPastFilterAndLimit) {
    auto const path = Subscribe(Filter(Topics("tns1:RuleEngine/LineDetector/Crossed")));
    for (auto const* name : {"dwell", "stopped", "aggressive-behaviour"}) Publish(MakeEvent(name, name));
    Publish(MakeCrossing("first"));
    Publish(MakeCrossing("second"));
    EXPECT_THAT(GetRules(Pull(path, 1)), ElementsAre("dwell", "stopped", "aggressive-behaviour", "first"));
    EXPECT_THAT(GetRules(Pull(path, 1)), ElementsAre("second"));
}

TEST_F(PullPoint, EndsOnUnsubscribe) {
    auto const path = Subscribe();
    auto const reply = Unsubscribe(path);
    EXPECT_EQ(reply.status, 200);
    EXPECT_EQ(reply.Message(), "<wsnt:UnsubscribeResponse/>");
    EXPECT_EQ(Unsubscribe(path).status, 200);
    EXPECT_THAT(Pull(path), IsNotFound());
    EXPECT_THAT(Renew(path, "PT10S"), IsNotFound());
}

TEST_F(PullPoint, EndsAtItsTerminationTime) { EXPECT_TRUE(EndsSoon(Subscribe(Termination("PT0.1S")))); }

TEST_F(PullPoint, KeepsItsTerminationTimeWhenPulled) {
    auto const path = Subscribe(Termination("2061-07-28T12:30:00Z"));
    Publish(MakeFieldEvent());
    Pull(path);
    EXPECT_EQ(Pull(path).Text("//tev:TerminationTime"), "2061-07-28T12:30:00Z");
}

TEST_F(PullPoint, MovesItsTerminationTimeOnRenew) {
    auto const path = Subscribe(Termination("PT1M"));
    EXPECT_LT(chrono::FromIso8601(Pull(path).Text("//tev:TerminationTime")),
              std::chrono::system_clock::now() + 1min + 1s);
    auto const reply = Renew(path, "2061-07-28T12:30:00Z");
    EXPECT_EQ(reply.Text("//wsnt:RenewResponse/wsnt:TerminationTime"), "2061-07-28T12:30:00Z");
    EXPECT_TRUE(reply.Has("//wsnt:RenewResponse/wsnt:CurrentTime"));
    EXPECT_EQ(Pull(path).Text("//tev:TerminationTime"), "2061-07-28T12:30:00Z");
    ExpectLifetime(2min, [&] { return Renew(path, "PT2M"); });
    ExpectLifetime(5min, [&] { return Ask("<wsnt:Renew/>", {.path = path}); });
    EXPECT_EQ(Renew(path, "2001-01-01T00:00:00Z").status, 200);
    EXPECT_TRUE(EndsSoon(path));
}

TEST_F(PullPoint, AcceptsNilRequestsExceptForPullMessages) {
    auto const path = Subscribe();
    constexpr auto nil = "xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance' xsi:nil='true'";
    ExpectLifetime(5min, [&] {
        return Ask(std::string("<wsnt:Renew><wsnt:TerminationTime ") + nil + "/></wsnt:Renew>", {.path = path});
    });
    ExpectLifetime(5min, [&] { return Ask(std::string("<wsnt:Renew ") + nil + "/>", {.path = path}); });
    EXPECT_EQ(Ask(std::string("<tev:CreatePullPointSubscription ") + nil + "/>").status, 200);
    EXPECT_THROW(Ask(std::string("<tev:PullMessages ") + nil + "/>", {.path = path}), std::future_error);
}

TEST_F(PullPoint, OutlivesItsManager) {
    auto const path = Subscribe();
    ReplaceManager();
    Publish(MakeFieldEvent("one"));
    EXPECT_THAT(GetRules(Pull(path)), ElementsAre("one"));
}

TEST_F(PullPoint, SynchronizesAndReportsCapabilitiesWithoutCredentials) {
    EXPECT_EQ(AskAnonymously("<tev:SetSynchronizationPoint/>").Message(), "<tev:SetSynchronizationPointResponse/>");
    EXPECT_THAT(AskAnonymously("<tev:GetServiceCapabilities/>"), Answers(R"(
        <tev:GetServiceCapabilitiesResponse>
          <tev:Capabilities WSSubscriptionPolicySupport="false" WSPullPointSupport="true"
                            WSPausableSubscriptionManagerInterfaceSupport="false" MaxNotificationProducers="2147483647"
                            MaxPullPoints="2147483647" PersistentNotificationStorage="false"/>
        </tev:GetServiceCapabilitiesResponse>)"));
}

} // namespace
} // namespace zarn::test
