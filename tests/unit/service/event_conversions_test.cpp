#include "service/onvif/events/create_base_event.h"
#include "service/onvif/events/topics.h"
#include "service/onvif/events/types.h"
#include "service/onvif/soap_context.h"

#include <zarn/meta/data/event.h>
#include <zarn/meta/data/object.h>
#include <zarn/meta/data/zone.h>

#include <gmock/gmock.h>
#include <soapH.h>

#include <chrono>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace zarn::service::onvif::events {
namespace {

namespace data = meta::data;
using testing::ElementsAre;

class EventConversions : public testing::Test {
protected:
    /// The families that accept the event, out of those that it is offered to.
    std::vector<std::string> GetClaims(std::shared_ptr<data::Event> const& event) {
        std::vector<std::string> claims;
        for (auto const& type : Types) {
            if (type.convert(context.get(), messages, event, type.name)) claims.emplace_back(type.name);
        }
        return claims;
    }

    static std::shared_ptr<data::Event> Make(std::string const& type) {
        return std::make_shared<data::Event>(type, "rule", std::chrono::system_clock::time_point());
    }

    static std::vector<std::shared_ptr<data::Event>> MakeAll();

    std::shared_ptr<struct soap> const context = MakeSoapContext();
    std::vector<wsnt__NotificationMessageHolderType*> messages;
};

TEST_F(EventConversions, AreOfferedInTheOrderOfTheFamilies) {
    std::vector<std::string> names;
    for (auto const& type : Types) names.emplace_back(type.name);
    EXPECT_THAT(names, ElementsAre("FieldDetector", "LineDetector", "LoiteringDetector", "CountAggregation"));
}

TEST_F(EventConversions, ClaimTheEventsTheyConvert) {
    auto const field = Make("presence");
    field->Emplace<data::Zone>(data::Zone::Field);
    EXPECT_THAT(GetClaims(field), ElementsAre("FieldDetector"));
    auto const line = Make("presence");
    line->Emplace<data::Zone>(data::Zone::Line);
    EXPECT_THAT(GetClaims(line), ElementsAre("LineDetector"));
    EXPECT_THAT(GetClaims(Make("count")), ElementsAre("CountAggregation"));
    EXPECT_EQ(messages.size(), 3U);
}

TEST_F(EventConversions, ConvertLoiteringWithoutClaimingIt) {
    EXPECT_THAT(GetClaims(Make("dwell")), ElementsAre());
    EXPECT_EQ(messages.size(), 1U);
}

TEST_F(EventConversions, IgnoreOtherEvents) {
    EXPECT_THAT(GetClaims(Make("presence")), ElementsAre());
    EXPECT_THAT(GetClaims(Make("unknown")), ElementsAre());
    EXPECT_EQ(messages.size(), 0U);
}

/// Every event type of every family, in every zone and without one.
std::vector<std::shared_ptr<data::Event>> EventConversions::MakeAll() {
    std::vector<std::shared_ptr<data::Event>> all;
    for (auto const& type : Types) {
        for (auto const& row : type.selection->subtopics) {
            all.push_back(Make(std::string(row.type)));
            for (auto const zone : {data::Zone::Field, data::Zone::Line, 7U}) {
                all.push_back(Make(std::string(row.type)));
                all.back()->Emplace<data::Zone>(zone);
            }
        }
    }
    all.push_back(Make("unknown"));
    return all;
}

TEST_F(EventConversions, HaveTheTopicThatIsKnownBefore) {
    std::set<Subtopic const*> found;
    for (auto const& event : MakeAll()) {
        for (auto const& type : Types) {
            messages.clear();
            auto const* const subtopic = type.selection->Find(*event);
            found.insert(subtopic);
            bool const isHandled = type.convert(context.get(), messages, event, type.name);
            EXPECT_EQ(isHandled, subtopic && !type.selection->passesFilters) << type.name << event->GetType();
            ASSERT_EQ(messages.size(), subtopic ? 1U : 0U) << type.name << event->GetType();
            if (subtopic) {
                EXPECT_EQ(soap_elt_get_text(&messages.back()->Topic->__mixed), GetTopic(type.name, *subtopic));
            }
        }
    }
    for (auto const& type : Types) {
        for (auto const& row : type.selection->subtopics) EXPECT_TRUE(found.contains(&row)) << type.name << row.type;
    }
}

TEST(ObjectCompare, OrdersOnlyById) {
    data::Object const first(2);
    data::Object const second(2);
    data::Object const third(3);
    EXPECT_FALSE(ObjectCompare()(&first, &second));
    EXPECT_TRUE(ObjectCompare()(&first, &third));
    EXPECT_FALSE(ObjectCompare()(&third, &first));
}

} // namespace
} // namespace zarn::service::onvif::events
