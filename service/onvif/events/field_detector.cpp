#include "create_base_event.h"
#include "topics.h"

#include <zarn/meta/data/zone.h>

#include <soapH.h>

namespace zarn::service::onvif::events {

constinit Selection const selections::FieldDetector{.subtopics = FieldDetectorSubtopics,
                                                    .zone = meta::data::Zone::Field};

void descriptions::FieldDetector(soap* soap, soap_dom_element& ruleEngine, char const* name) {
    AddTopics(soap, ruleEngine, name, FieldDetectorSubtopics, {{"IsInside", "xsd:boolean"}});
}

bool conversions::FieldDetector(soap* soap, Messages& messages, EventPtr const& event, char const* name) {
    auto* const message = CreateEvent(soap, messages, event, name, selections::FieldDetector);
    if (!message) return false;
    AddItem(message->Data, "IsInside", "true"); // whatever the subtopic, on purpose
    return true;
}

} // namespace zarn::service::onvif::events
