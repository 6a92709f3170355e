#include "topics.h"

#include <zarn/meta/data/zone.h>

namespace zarn::service::onvif::events {

namespace {

constexpr std::array LineDetectorSubtopics{
    Subtopic{"presence", "Crossed"},
    Subtopic{"direction", "Crossed"},
    Subtopic{"directional-crossing", "Crossed"},
    Subtopic{"tailgating", "Tailgating"},
    Subtopic{"and", "Logical"},
    Subtopic{"not", "Logical"},
    Subtopic{"or", "Logical"},
};

} // namespace

constinit Selection const selections::LineDetector{.subtopics = LineDetectorSubtopics, .zone = meta::data::Zone::Line};

void descriptions::LineDetector(soap* soap, soap_dom_element& ruleEngine, char const* name) {
    AddTopics(soap, ruleEngine, name, FieldDetectorSubtopics, {});
}

bool conversions::LineDetector(soap* soap, Messages& messages, EventPtr const& event, char const* name) {
    return CreateEvent(soap, messages, event, name, selections::LineDetector) != nullptr;
}

} // namespace zarn::service::onvif::events
