#include "conversions.h"

#include "create_base_event.h"
#include "subtopics.h"

#include <zarn/chrono/iso8601.h>
#include <zarn/meta/data/count/value.h>
#include <zarn/meta/data/event.h>
#include <zarn/meta/data/zone.h>

#include <soapH.h>

#include <algorithm>
#include <cstdint>
#include <span>
#include <string>

namespace zarn::service::onvif::events::conversions {

namespace data = meta::data;

namespace {

using Messages = std::vector<wsnt__NotificationMessageHolderType*>;
using EventPtr = std::shared_ptr<data::Event>;

/// Appends the message of the event's subtopic. Null when the table has none, or without memory.
tt__Message* Create(soap* soap, Messages& messages, EventPtr const& event, char const* rule,
                    std::span<Subtopic const> subtopics) {
    auto const row = std::ranges::find(subtopics, event->GetType(), &Subtopic::type);
    if (row == subtopics.end()) return nullptr;
    return CreateBaseEvent(soap, messages, event, std::string("tns1:RuleEngine/") + rule + '/' + row->name);
}

bool IsInZone(data::Event const& event, std::uint32_t type) {
    auto const* zone = event.First<data::Zone>();
    return zone && zone->GetType() == type;
}

} // namespace

bool FieldDetector(soap* soap, Messages& messages, EventPtr const& event) {
    if (!IsInZone(*event, data::Zone::Field)) return false;
    auto* const message = Create(soap, messages, event, "FieldDetector", FieldDetectorSubtopics);
    if (!message) return false;
    AddItem(message->Data, "IsInside", "true"); // whatever the subtopic, on purpose
    return true;
}

bool LineDetector(soap* soap, Messages& messages, EventPtr const& event) {
    if (!IsInZone(*event, data::Zone::Line)) return false;
    return Create(soap, messages, event, "LineDetector", LineDetectorSubtopics) != nullptr;
}

bool LoiteringDetector(soap* soap, Messages& messages, EventPtr const& event) {
    if (auto* const message = Create(soap, messages, event, "LoiteringDetector", LoiteringDetectorSubtopics)) {
        AddItem(message->Data, "Since", chrono::ToIso8601(event->GetStart(), chrono::TimeZone(0)));
    }
    return false; // also with a message, on purpose: it reaches every client, whatever its filter and limit
}

bool CountAggregation(soap* soap, Messages& messages, EventPtr const& event) {
    static constexpr std::array Subtopics{Subtopic{"count", "Counter"}};
    auto* const message = Create(soap, messages, event, "CountAggregation", Subtopics);
    if (!message) return false;
    if (auto const* count = event->First<data::count::Value>()) {
        AddItem(message->Data, "Count", std::to_string(count->GetValue()));
    }
    return true;
}

} // namespace zarn::service::onvif::events::conversions
