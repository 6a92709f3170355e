#include "create_base_event.h"
#include "topics.h"

#include <zarn/meta/data/count/value.h>
#include <zarn/meta/data/event.h>

#include <soapH.h>

#include <string>

namespace zarn::service::onvif::events {

namespace {

constexpr std::array CountAggregationSubtopics{Subtopic{"count", "Counter"}};

} // namespace

constinit Selection const selections::CountAggregation{.subtopics = CountAggregationSubtopics};

void descriptions::CountAggregation(soap* soap, soap_dom_element& ruleEngine, char const* name) {
    AddTopics(soap, ruleEngine, name, CountAggregationSubtopics, {{"Count", "xsd:integer"}});
}

bool conversions::CountAggregation(soap* soap, Messages& messages, EventPtr const& event, char const* name) {
    auto* const message = CreateEvent(soap, messages, event, name, selections::CountAggregation);
    if (!message) return false;
    if (auto const* count = event->First<meta::data::count::Value>())
        AddItem(message->Data, "Count", std::to_string(count->GetValue()));
    return true;
}

} // namespace zarn::service::onvif::events
