#pragma once

#include "types.h"

#include <array>
#include <initializer_list>
#include <span>
#include <string>

class tt__Message;
class tt__MessageDescription;

namespace zarn::service::onvif::events {

/// Events in a zone that is a field. Their topics are also those that are published for lines and loitering, on
/// purpose, whatever the messages of those families say.
inline constexpr std::array FieldDetectorSubtopics{
    Subtopic{"presence", "ObjectsInside"},
    Subtopic{"direction", "Crossed"},
    Subtopic{"directional-crossing", "Crossed"},
    Subtopic{"enter", "Enter"},
    Subtopic{"exit", "Exit"},
    Subtopic{"appear", "Appear"},
    Subtopic{"disappear", "Disappear"},
    Subtopic{"tailgating", "Tailgating"},
    Subtopic{"fall", "Fall"},
    Subtopic{"and", "Logical"},
    Subtopic{"not", "Logical"},
    Subtopic{"or", "Logical"},
};

/// The concrete topic of a family's messages, such as "tns1:RuleEngine/LineDetector/Crossed".
std::string GetTopic(char const* family, Subtopic const& subtopic);

/// Appends the message of the event's subtopic. Null when the event is not one of the selection, or without memory.
tt__Message* CreateEvent(soap* soap, Messages& messages, EventPtr const& event, char const* family,
                         Selection const& selection);

/// A value that messages carry, as the topic set describes it.
struct ItemDescription {
    char const* name;
    char const* type; ///< qualified name
};

/// Gives a topic of the topic set the description that all messages share, allocated in the context, and returns it;
/// null without memory. Source: ONVIF Core, Message description language.
/// The items of the source are those of ONVIF's rules, on purpose: the messages themselves name "VideoSource" and
/// "Rule".
tt__MessageDescription* CreateBaseEventDescription(soap* soap, soap_dom_element& leaf);

/// Adds a family's branch with a topic for each subtopic, whose messages carry further data.
void AddTopics(soap* soap, soap_dom_element& ruleEngine, char const* family, std::span<Subtopic const> subtopics,
               std::initializer_list<ItemDescription> data);

} // namespace zarn::service::onvif::events
