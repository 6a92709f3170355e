#pragma once

#include <array>
#include <string_view>

namespace zarn::service::onvif::events {

/// The topic of a host event type below the topic of its rule family.
struct Subtopic {
    std::string_view type; ///< as meta::data::Event::GetType() gives it
    char const* name;
};

/// Events of a zone that is a field.
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

/// Events of a zone that is a line.
inline constexpr std::array LineDetectorSubtopics{
    Subtopic{"presence", "Crossed"},
    Subtopic{"direction", "Crossed"},
    Subtopic{"directional-crossing", "Crossed"},
    Subtopic{"tailgating", "Tailgating"},
    Subtopic{"and", "Logical"},
    Subtopic{"not", "Logical"},
    Subtopic{"or", "Logical"},
};

/// Events of objects that stay.
inline constexpr std::array LoiteringDetectorSubtopics{
    Subtopic{"dwell", "ObjectIsLoitering"},
    Subtopic{"stopped", "Stopped"},
    Subtopic{"aggressive-behaviour", "Aggressive"},
};

} // namespace zarn::service::onvif::events
