#include "device_fixture.h"

#include <gmock/gmock.h>

#include <string>

namespace zarn::test {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::ElementsAreArray;

constexpr auto FieldTopics = {"ObjectsInside", "Crossed",    "Enter", "Exit",   "Appear",
                              "Disappear",     "Tailgating", "Fall",  "Logical"};

class EventProperties : public DeviceFixture {
protected:
    /// The names of an element's children.
    std::vector<std::string> GetNames(std::string const& xpath) const {
        std::vector<std::string> names;
        for (auto const& node : reply.Select((xpath + "/*").c_str())) names.emplace_back(node.node().name());
        return names;
    }

    std::vector<std::string> GetItems(std::string const& leaf, std::string const& list) const {
        std::vector<std::string> items;
        auto const path =
            "//tns1:RuleEngine/" + leaf + "/tt:MessageDescription/tt:" + list + "/tt:SimpleItemDescription";
        for (auto const& node : reply.Select(path.c_str())) {
            items.push_back(std::string(node.node().attribute("Name").value()) + ' ' +
                            node.node().attribute("Type").value());
        }
        return items;
    }

    Reply const reply = AskAnonymously("<tev:GetEventProperties/>");
};

TEST_F(EventProperties, NeedNoCredentials) {
    EXPECT_EQ(reply.status, 200);
    EXPECT_FALSE(reply.Has("//wsa5:Action"));
    EXPECT_EQ(Ask("<tev:GetEventProperties/>").Message(), reply.Message());
}

TEST_F(EventProperties, NameDialectsAndSchemas) {
    EXPECT_THAT(GetNames("//tev:GetEventPropertiesResponse"),
                ElementsAre("tev:TopicNamespaceLocation", "wsnt:FixedTopicSet", "wstop:TopicSet",
                            "wsnt:TopicExpressionDialect", "wsnt:TopicExpressionDialect",
                            "tev:MessageContentFilterDialect", "tev:MessageContentSchemaLocation"));
    EXPECT_EQ(reply.Text("//tev:TopicNamespaceLocation"), "http://www.onvif.org/onvif/ver10/topic/topicns.xml");
    EXPECT_EQ(reply.Text("//wsnt:FixedTopicSet"), "false");
    EXPECT_THAT(reply.Texts("//wsnt:TopicExpressionDialect"),
                ElementsAre("http://docs.oasis-open.org/wsn/t-1/TopicExpression/Concrete",
                            "http://www.onvif.org/ver10/tev/topicExpression/ConcreteSet"));
    EXPECT_EQ(reply.Text("//tev:MessageContentFilterDialect"),
              "http://www.onvif.org/ver10/tev/messageContentFilter/ItemFilter");
    EXPECT_EQ(reply.Text("//tev:MessageContentSchemaLocation"), "http://www.onvif.org/onvif/ver10/schema/onvif.xsd");
}

TEST_F(EventProperties, ListTheFamiliesInOrder) {
    EXPECT_THAT(GetNames("//wstop:TopicSet"), ElementsAre("tns1:RuleEngine", "tns1:VideoSource"));
    EXPECT_THAT(GetNames("//tns1:RuleEngine"),
                ElementsAre("FieldDetector", "LineDetector", "LoiteringDetector", "CountAggregation"));
}

TEST_F(EventProperties, ListTheSameTopicsForAllThreeDetectors) {
    for (std::string const rule : {"FieldDetector", "LineDetector", "LoiteringDetector"}) {
        EXPECT_THAT(GetNames("//" + rule), ElementsAreArray(FieldTopics)) << rule;
        EXPECT_THAT(reply.Texts(("//" + rule + "/*/@wstop:topic").c_str()),
                    ElementsAreArray(std::vector<std::string>(9, "true")))
            << rule;
    }
    EXPECT_THAT(GetNames("//CountAggregation"), ElementsAre("Counter"));
    EXPECT_EQ(reply.Text("//CountAggregation/Counter/@wstop:topic"), "true");
}

TEST_F(EventProperties, DescribeTheMessagesOfEachTopicOnce) {
    for (std::string const rule : {"FieldDetector", "LineDetector", "LoiteringDetector", "CountAggregation"}) {
        for (auto const& topic : GetNames("//" + rule)) {
            auto const leaf = rule + "/" + topic;
            EXPECT_THAT(GetNames("//" + leaf), ElementsAre("tt:MessageDescription")) << leaf;
            EXPECT_THAT(GetNames("//" + leaf + "/tt:MessageDescription"), ElementsAre("tt:Source", "tt:Data")) << leaf;
            EXPECT_EQ(reply.Text(("//" + leaf + "/tt:MessageDescription/@IsProperty").c_str()), "true") << leaf;
            EXPECT_THAT(GetItems(leaf, "Source"),
                        ElementsAre("VideoSourceConfigurationToken tt:ReferenceToken",
                                    "VideoAnalyticsConfigurationToken tt:ReferenceToken", "Rule xsd:string"))
                << leaf;
        }
    }
}

TEST_F(EventProperties, DescribeTheDataOfEachFamily) {
    for (std::string const topic : FieldTopics) {
        EXPECT_THAT(GetItems("FieldDetector/" + topic, "Data"),
                    ElementsAre("ObjectId xsd:integer", "IsInside xsd:boolean"));
        EXPECT_THAT(GetItems("LineDetector/" + topic, "Data"), ElementsAre("ObjectId xsd:integer"));
        EXPECT_THAT(GetItems("LoiteringDetector/" + topic, "Data"),
                    ElementsAre("ObjectId xsd:integer", "Since xsd:dateTime"));
    }
    EXPECT_THAT(GetItems("CountAggregation/Counter", "Data"), ElementsAre("ObjectId xsd:integer", "Count xsd:integer"));
}

TEST_F(EventProperties, ListMotionAlarmWithoutADescription) {
    EXPECT_THAT(GetNames("//tns1:VideoSource"), ElementsAre("MotionAlarm"));
    EXPECT_EQ(reply.Text("//tns1:VideoSource/MotionAlarm/@wstop:topic"), "true");
    EXPECT_THAT(GetNames("//tns1:VideoSource/MotionAlarm"), testing::IsEmpty());
}

} // namespace
} // namespace zarn::test
