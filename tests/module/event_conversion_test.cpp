#include "pull_point_fixture.h"

#include <zarn/meta/data/channel.h>
#include <zarn/meta/data/classification/confidence.h>
#include <zarn/meta/data/classification/name.h>
#include <zarn/meta/data/count/value.h>
#include <zarn/meta/data/object.h>
#include <zarn/meta/data/zone.h>

#include <gmock/gmock.h>

#include <cstdint>
#include <limits>
#include <memory>
#include <string>

namespace zarn::test {
namespace {

using meta::data::Channel;
using meta::data::Event;
using meta::data::Object;
using meta::data::Zone;
using meta::data::classification::Confidence;
using meta::data::classification::Name;
using meta::data::count::Value;
using testing::ElementsAre;
using testing::IsEmpty;

class EventConversion : public PullPointFixture {
protected:
    /// The answer to a client that pulls this event.
    Reply Convert(std::shared_ptr<Event> event) {
        auto const path = Subscribe();
        Publish(std::move(event));
        return Pull(path);
    }

    std::string GetTopic(std::shared_ptr<Event> event) {
        auto const topics = GetTopics(Convert(std::move(event)));
        return topics.empty() ? "none" : topics.front();
    }

    static std::string GetItem(Reply const& reply, std::string const& name) {
        return reply.Text(("//tt:Message/*/tt:SimpleItem[@Name='" + name + "']/@Value").c_str());
    }

    static std::vector<std::string> GetDataNames(Reply const& reply) {
        return reply.Texts("//tt:Message/tt:Data/tt:SimpleItem/@Name");
    }
};

std::shared_ptr<Event> InZone(std::string const& type, std::uint32_t zone) {
    auto event = MakeEvent(type);
    event->Emplace<Zone>(zone);
    return event;
}

struct Row {
    char const* type;
    char const* field; ///< topic of an event in a field
    char const* line;  ///< topic of an event at a line
};

constexpr Row ZoneRows[] = {
    {"presence", "tns1:RuleEngine/FieldDetector/ObjectsInside", "tns1:RuleEngine/LineDetector/Crossed"},
    {"direction", "tns1:RuleEngine/FieldDetector/Crossed", "tns1:RuleEngine/LineDetector/Crossed"},
    {"directional-crossing", "tns1:RuleEngine/FieldDetector/Crossed", "tns1:RuleEngine/LineDetector/Crossed"},
    {"enter", "tns1:RuleEngine/FieldDetector/Enter", "none"},
    {"exit", "tns1:RuleEngine/FieldDetector/Exit", "none"},
    {"appear", "tns1:RuleEngine/FieldDetector/Appear", "none"},
    {"disappear", "tns1:RuleEngine/FieldDetector/Disappear", "none"},
    {"tailgating", "tns1:RuleEngine/FieldDetector/Tailgating", "tns1:RuleEngine/LineDetector/Tailgating"},
    {"fall", "tns1:RuleEngine/FieldDetector/Fall", "none"},
    {"and", "tns1:RuleEngine/FieldDetector/Logical", "tns1:RuleEngine/LineDetector/Logical"},
    {"not", "tns1:RuleEngine/FieldDetector/Logical", "tns1:RuleEngine/LineDetector/Logical"},
    {"or", "tns1:RuleEngine/FieldDetector/Logical", "tns1:RuleEngine/LineDetector/Logical"},
    {"Presence", "none", "none"},
    {"intrusion", "none", "none"},
    {"", "none", "none"},
};

TEST_F(EventConversion, DerivesTheTopicFromTypeAndZone) {
    for (auto const& row : ZoneRows) {
        EXPECT_EQ(GetTopic(InZone(row.type, Zone::Field)), row.field) << row.type;
        EXPECT_EQ(GetTopic(InZone(row.type, Zone::Line)), row.line) << row.type;
        EXPECT_EQ(GetTopic(InZone(row.type, 2)), "none") << row.type;
        EXPECT_EQ(GetTopic(MakeEvent(row.type)), "none") << row.type;
    }
}

TEST_F(EventConversion, UsesTheFirstZone) {
    auto const event = InZone("presence", Zone::Line);
    event->Emplace<Zone>(Zone::Field);
    EXPECT_EQ(GetTopic(event), "tns1:RuleEngine/LineDetector/Crossed");
}

TEST_F(EventConversion, NeedsNoZoneForLoiteringAndCounts) {
    for (auto const zone : {Zone::Field, Zone::Line, 7U}) {
        EXPECT_EQ(GetTopic(InZone("dwell", zone)), "tns1:RuleEngine/LoiteringDetector/ObjectIsLoitering");
        EXPECT_EQ(GetTopic(InZone("count", zone)), "tns1:RuleEngine/CountAggregation/Counter");
    }
    EXPECT_EQ(GetTopic(MakeEvent("dwell")), "tns1:RuleEngine/LoiteringDetector/ObjectIsLoitering");
    EXPECT_EQ(GetTopic(MakeEvent("stopped")), "tns1:RuleEngine/LoiteringDetector/Stopped");
    EXPECT_EQ(GetTopic(MakeEvent("aggressive-behaviour")), "tns1:RuleEngine/LoiteringDetector/Aggressive");
    EXPECT_EQ(GetTopic(MakeEvent("count")), "tns1:RuleEngine/CountAggregation/Counter");
}

TEST_F(EventConversion, ConvertsAFieldEventToACompleteMessage) {
    auto const event = MakeFieldEvent("Gate <rule> \"Tür\"");
    event->Emplace<Channel>(1);
    event->Emplace<Channel>(2);
    event->Emplace<Object>(12).Emplace<Confidence>("person", 0.9);
    EXPECT_EQ(Convert(event).Texts("//wsnt:NotificationMessage").size(), 1U);
    EXPECT_THAT(Convert(event).Message(),
                testing::HasSubstr(
                    R"(<wsnt:NotificationMessage><wsnt:Topic Dialect="http://www.onvif.org/ver10/tev/topicExpression/)"
                    R"(ConcreteSet">tns1:RuleEngine/FieldDetector/ObjectsInside</wsnt:Topic><wsnt:Message><tt:Message )"
                    R"(UtcTime="2026-01-31T12:00:00Z" PropertyOperation="Changed"><tt:Source>)"
                    R"(<tt:SimpleItem Name="VideoSource" Value="channels.1"/>)"
                    R"(<tt:SimpleItem Name="Rule" Value="Gate &lt;rule> &quot;Tür&quot;"/></tt:Source><tt:Data>)"
                    R"(<tt:SimpleItem Name="ObjectId" Value="12 "/><tt:SimpleItem Name="ClassTypes" Value="person "/>)"
                    R"(<tt:SimpleItem Name="IsInside" Value="true"/></tt:Data></tt:Message></wsnt:Message>)"
                    R"(</wsnt:NotificationMessage>)"));
}

TEST_F(EventConversion, ConvertsEveryOtherFamilyToACompleteMessage) {
    struct Expected {
        char const* type;
        std::uint32_t zone;
        char const* topic;
        char const* items; ///< items after the ones that every message has
    };

    for (auto const& [type, zone, topic, items] : {
             Expected{"direction", Zone::Line, "LineDetector/Crossed", ""},
             Expected{"dwell", Zone::Field, "LoiteringDetector/ObjectIsLoitering",
                      R"(<tt:SimpleItem Name="Since" Value="2026-01-31T12:00:00.25Z"/>)"},
             Expected{"count", Zone::Field, "CountAggregation/Counter", R"(<tt:SimpleItem Name="Count" Value="3"/>)"},
         }) {
        auto const event = InZone(type, zone);
        event->Emplace<Channel>(2);
        event->Emplace<Object>(12).Emplace<Confidence>("person", 0.9);
        event->Emplace<Value>(3);
        auto const reply = Convert(event);
        EXPECT_EQ(reply.Texts("//wsnt:NotificationMessage").size(), 1U) << type;
        EXPECT_THAT(
            reply.Message(),
            testing::HasSubstr(
                R"(<wsnt:NotificationMessage><wsnt:Topic Dialect="http://www.onvif.org/ver10/tev/topicExpression/)"
                R"(ConcreteSet">tns1:RuleEngine/)" +
                std::string(topic) +
                R"(</wsnt:Topic><wsnt:Message><tt:Message UtcTime="2026-01-31T12:00:00Z" PropertyOperation="Changed">)"
                R"(<tt:Source><tt:SimpleItem Name="VideoSource" Value="channels.2"/>)"
                R"(<tt:SimpleItem Name="Rule" Value="rule"/></tt:Source><tt:Data>)"
                R"(<tt:SimpleItem Name="ObjectId" Value="12 "/><tt:SimpleItem Name="ClassTypes" Value="person "/>)" +
                items + "</tt:Data></tt:Message></wsnt:Message></wsnt:NotificationMessage>"))
            << type;
    }
}

TEST_F(EventConversion, SetsIsInsideForEveryFieldEvent) {
    for (auto const* type : {"presence", "direction", "directional-crossing", "enter", "exit", "appear", "disappear",
                             "tailgating", "fall", "and", "not", "or"}) {
        auto const reply = Convert(InZone(type, Zone::Field));
        EXPECT_THAT(GetDataNames(reply), ElementsAre("ObjectId", "IsInside")) << type;
        EXPECT_EQ(GetItem(reply, "IsInside"), "true") << type;
    }
}

TEST_F(EventConversion, AddsNoExtraDataToALineEvent) {
    EXPECT_THAT(GetDataNames(Convert(InZone("direction", Zone::Line))), ElementsAre("ObjectId"));
}

TEST_F(EventConversion, UsesAnInvalidChannelIdWithoutAChannel) {
    EXPECT_EQ(GetItem(Convert(MakeFieldEvent()), "VideoSource"), "channels.4294967295");
}

TEST_F(EventConversion, ListsEveryObjectOnceInAscendingOrder) {
    auto const event = MakeFieldEvent();
    for (auto const id : {12U, 3U, 3U, 4294967295U, 0U}) event->Emplace<Object>(id);
    auto const reply = Convert(event);
    EXPECT_EQ(GetItem(reply, "ObjectId"), "0 3 12 4294967295 ");
    EXPECT_THAT(GetDataNames(reply), ElementsAre("ObjectId", "IsInside"));
}

TEST_F(EventConversion, ListsNoObjectsAsAnEmptyText) { EXPECT_EQ(GetItem(Convert(MakeFieldEvent()), "ObjectId"), ""); }

TEST_F(EventConversion, ListsClassesAsSoonAsOneObjectHasOne) {
    auto const event = MakeFieldEvent();
    event->Emplace<Object>(4);
    event->Emplace<Object>(2).Emplace<Confidence>("person");
    auto const reply = Convert(event);
    EXPECT_EQ(GetItem(reply, "ObjectId"), "2 4 ");
    EXPECT_EQ(GetItem(reply, "ClassTypes"), "person unclassified ");
    EXPECT_THAT(GetDataNames(reply), ElementsAre("ObjectId", "ClassTypes", "IsInside"));
}

TEST_F(EventConversion, UsesTheNameOfAnObjectWithoutAConfidence) {
    auto const event = MakeFieldEvent();
    event->Emplace<Object>(1).Emplace<Name>("visitor");
    auto& both = event->Emplace<Object>(2);
    both.Emplace<Name>("ignored");
    both.Emplace<Confidence>("vehicle");
    auto& emptyClass = event->Emplace<Object>(3);
    emptyClass.Emplace<Confidence>("");
    emptyClass.Emplace<Name>("ignored, too");
    EXPECT_EQ(GetItem(Convert(event), "ClassTypes"), "visitor vehicle unclassified ");
}

TEST_F(EventConversion, KeepsTheFirstOfTwoObjectsWithOneId) {
    auto const event = MakeFieldEvent();
    event->Emplace<Object>(1).Emplace<Confidence>("first");
    event->Emplace<Object>(1).Emplace<Confidence>("second");
    EXPECT_EQ(GetItem(Convert(event), "ClassTypes"), "first ");
}

TEST_F(EventConversion, ListsNoClassesWhenAllAreEmpty) {
    auto const event = MakeFieldEvent();
    event->Emplace<Object>(1).Emplace<Confidence>("");
    event->Emplace<Object>(2).Emplace<Name>("");
    EXPECT_THAT(GetDataNames(Convert(event)), ElementsAre("ObjectId", "IsInside"));
}

TEST_F(EventConversion, ReportsSinceWhenAnObjectLoiters) {
    for (auto const* type : {"dwell", "stopped", "aggressive-behaviour"}) {
        auto const reply = Convert(MakeEvent(type));
        EXPECT_THAT(GetDataNames(reply), ElementsAre("ObjectId", "Since")) << type;
        EXPECT_EQ(GetItem(reply, "Since"), "2026-01-31T12:00:00.25Z") << type;
    }
}

TEST_F(EventConversion, ReportsTheFirstCount) {
    for (auto const count : {3, 0, -4, std::numeric_limits<std::int32_t>::min()}) {
        auto const event = MakeEvent("count");
        event->Emplace<Value>(count);
        event->Emplace<Value>(99);
        auto const reply = Convert(event);
        EXPECT_EQ(GetItem(reply, "Count"), std::to_string(count));
        EXPECT_THAT(GetDataNames(reply), ElementsAre("ObjectId", "Count"));
    }
}

TEST_F(EventConversion, ConvertsACountWithoutANumber) {
    EXPECT_THAT(GetDataNames(Convert(MakeEvent("count"))), ElementsAre("ObjectId"));
}

TEST_F(EventConversion, TruncatesTheTimeToSeconds) {
    using namespace std::chrono_literals;
    auto const at = [](std::chrono::nanoseconds time) {
        auto event = std::make_shared<Event>("count", "rule", std::chrono::system_clock::time_point(time));
        return event;
    };
    EXPECT_EQ(Convert(at(1999999999ns)).Text("//tt:Message/@UtcTime"), "1970-01-01T00:00:01Z");
    EXPECT_EQ(Convert(at(-1999999999ns)).Text("//tt:Message/@UtcTime"), "1969-12-31T23:59:59Z");
}

} // namespace
} // namespace zarn::test
