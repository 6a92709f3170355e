#pragma once

#include <array>
#include <memory>
#include <vector>

struct soap;
struct soap_dom_element;
class wsnt__NotificationMessageHolderType;

namespace zarn::meta::data {
class Event;
}

namespace zarn::service::onvif::events {

using Messages = std::vector<wsnt__NotificationMessageHolderType*>;
using EventPtr = std::shared_ptr<meta::data::Event>;

/// A family of the host's rules: how its topics are described, and how its events become messages.
struct Type {
    char const* name; ///< of its topic below `tns1:RuleEngine`

    /// Adds the family's branch to the element `tns1:RuleEngine` of the topic set.
    void (*describe)(soap* soap, soap_dom_element& ruleEngine, char const* name);

    /// Appends at most one message for the event, allocated in the context; returns whether the family has handled it.
    /// Thread: the one that runs the context's exchange.
    bool (*convert)(soap* soap, Messages& messages, EventPtr const& event, char const* name);
};

/// The families in the order in which an event is offered to them; the first that handles it ends the search. Each
/// defines its functions in a file of its own.
#define ZARN_EVENT_TYPES(X) X(FieldDetector) X(LineDetector) X(LoiteringDetector) X(CountAggregation)

#define ZARN_EVENT_TYPE(Name)                                                                                          \
    namespace descriptions {                                                                                           \
    void Name(soap* soap, soap_dom_element& ruleEngine, char const* name);                                             \
    }                                                                                                                  \
    namespace conversions {                                                                                            \
    bool Name(soap* soap, Messages& messages, EventPtr const& event, char const* name);                                \
    }
ZARN_EVENT_TYPES(ZARN_EVENT_TYPE)
#undef ZARN_EVENT_TYPE

#define ZARN_EVENT_TYPE(Name) Type{#Name, descriptions::Name, conversions::Name},
inline constexpr std::array Types{ZARN_EVENT_TYPES(ZARN_EVENT_TYPE)};
#undef ZARN_EVENT_TYPE

} // namespace zarn::service::onvif::events
