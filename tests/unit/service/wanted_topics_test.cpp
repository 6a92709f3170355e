#include <service/onvif/events/topics.h>
#include <service/onvif/events/types.h>
#include <service/onvif/events/wanted_topics.h>

#include <gmock/gmock.h>

#include <set>
#include <string>
#include <vector>

namespace zarn::service::onvif::events {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// The topics of all rows of all families.
std::vector<std::string> GetAll() {
    std::vector<std::string> topics;
    for (auto const& type : Types) {
        for (auto const& row : type.selection->subtopics) topics.push_back(GetTopic(type.name, row));
    }
    return topics;
}

/// Those of them that a subscription with this filter wants.
std::vector<std::string> GetWanted(std::set<std::string, std::less<>> const& filter) {
    WantedTopics const wanted(filter);
    std::vector<std::string> topics;
    for (auto const& type : Types) {
        for (auto const& row : type.selection->subtopics) {
            if (wanted.Contain(row)) topics.push_back(GetTopic(type.name, row));
        }
    }
    return topics;
}

TEST(WantedTopics, AreAllTopicsWithoutAFilter) {
    EXPECT_EQ(GetWanted({}), GetAll());
    for (auto const& type : Types) {
        for (auto const& row : type.selection->subtopics) EXPECT_TRUE(WantedTopics().Contain(row)) << row.type;
    }
}

TEST(WantedTopics, AreThoseOfTheFilter) {
    EXPECT_THAT(GetWanted({"tns1:RuleEngine/LineDetector/Tailgating", "tns1:RuleEngine/CountAggregation/Counter"}),
                ElementsAre("tns1:RuleEngine/LineDetector/Tailgating", "tns1:RuleEngine/CountAggregation/Counter"));
    EXPECT_THAT(GetWanted({"tns1:RuleEngine/LineDetector/Logical", "other"}),
                ElementsAre("tns1:RuleEngine/LineDetector/Logical", "tns1:RuleEngine/LineDetector/Logical",
                            "tns1:RuleEngine/LineDetector/Logical"));
}

TEST(WantedTopics, DoNotExtendToOtherRows) {
    auto const all = GetAll();
    for (auto const& topic : all) {
        std::vector<std::string> same;
        for (auto const& each : all) {
            if (each == topic) same.push_back(each);
        }
        EXPECT_EQ(GetWanted({topic}), same);
    }
}

TEST(WantedTopics, AreNoneWithAFilterThatNoFamilyKnows) {
    for (auto const* text : {"", " tns1:RuleEngine/LineDetector/Crossed", "tns1:RuleEngine/LineDetector/Crossed ",
                             "tns1:RuleEngine/LineDetector/crossed", "tns1:RuleEngine/LineDetector",
                             "tns1:RuleEngine/LineDetector/Enter", "LineDetector/Crossed"}) {
        EXPECT_THAT(GetWanted({text}), IsEmpty()) << text;
    }
}

} // namespace
} // namespace zarn::service::onvif::events
