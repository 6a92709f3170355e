#include "create_base_event.h"
#include "topics.h"

#include <zarn/chrono/iso8601.h>
#include <zarn/meta/data/event.h>

#include <soapH.h>

namespace zarn::service::onvif::events {

namespace {

/// Events of objects that stay.
constexpr std::array LoiteringDetectorSubtopics{
    Subtopic{"dwell", "ObjectIsLoitering"},
    Subtopic{"stopped", "Stopped"},
    Subtopic{"aggressive-behaviour", "Aggressive"},
};

} // namespace

constinit Selection const selections::LoiteringDetector{.subtopics = LoiteringDetectorSubtopics, .passesFilters = true};

void descriptions::LoiteringDetector(soap* soap, soap_dom_element& ruleEngine, char const* name) {
    AddTopics(soap, ruleEngine, name, FieldDetectorSubtopics, {{"Since", "xsd:dateTime"}});
}

bool conversions::LoiteringDetector(soap* soap, Messages& messages, EventPtr const& event, char const* name) {
    if (auto* const message = CreateEvent(soap, messages, event, name, selections::LoiteringDetector))
        AddItem(message->Data, "Since", chrono::ToIso8601(event->GetStart(), chrono::TimeZone(0)));
    return false; // also with a message, on purpose: it reaches every client, whatever its filter and limit
}

} // namespace zarn::service::onvif::events
