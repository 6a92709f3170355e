#pragma once

#include "../event_ptr.h"

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

struct soap;
struct soap_dom_element;
class wsnt__NotificationMessageHolderType;

namespace zarn::service::onvif::events {

using Messages = std::vector<wsnt__NotificationMessageHolderType*>;

/// The topic of a host event type below the topic of its family.
struct Subtopic {
    std::string_view type; ///< as meta::data::Event::GetType() gives it
    char const* name;
};

/// Which events belong to a family, and which topics their messages have.
struct Selection {
    std::span<Subtopic const> subtopics;    ///< a table of this family alone
    std::optional<std::uint32_t> zone = {}; ///< the type that the event's first zone must have; none: any, or no zone
    bool passesFilters = false;             ///< the messages reach every client, whatever its filter

    /// The event's row of the table; null when the event does not belong to the family.
    Subtopic const* Find(meta::data::Event const& event) const;
};

/// A family of the host's rules: its events, how its topics are described, and how its events become messages.
struct Type {
    char const* name; ///< of its topic below `tns1:RuleEngine`

    Selection const* selection;

    /// Adds the family's branch to the element `tns1:RuleEngine` of the topic set.
    void (*describe)(soap* soap, soap_dom_element& ruleEngine, char const* name);

    /// Appends at most one message for the event, allocated in the context, and only for an event that the selection
    /// finds; returns whether the family has handled it.
    /// Thread: the one that runs the context's exchange.
    bool (*convert)(soap* soap, Messages& messages, EventPtr const& event, char const* name);
};

/// The families in the order in which an event is offered to them; the first that handles it ends the search. Each
/// defines its selection and functions in a file of its own.
#define ZARN_EVENT_TYPES(X) X(FieldDetector) X(LineDetector) X(LoiteringDetector) X(CountAggregation)

#define ZARN_EVENT_TYPE(Name)                                                                                          \
    namespace selections {                                                                                             \
    extern Selection const Name;                                                                                       \
    }                                                                                                                  \
    namespace descriptions {                                                                                           \
    void Name(soap* soap, soap_dom_element& ruleEngine, char const* name);                                             \
    }                                                                                                                  \
    namespace conversions {                                                                                            \
    bool Name(soap* soap, Messages& messages, EventPtr const& event, char const* name);                                \
    }
ZARN_EVENT_TYPES(ZARN_EVENT_TYPE)
#undef ZARN_EVENT_TYPE

#define ZARN_EVENT_TYPE(Name) Type{#Name, &selections::Name, descriptions::Name, conversions::Name},
inline constexpr std::array Types{ZARN_EVENT_TYPES(ZARN_EVENT_TYPE)};
#undef ZARN_EVENT_TYPE

} // namespace zarn::service::onvif::events
