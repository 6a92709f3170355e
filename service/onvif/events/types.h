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

/// A family of the host's rules: how clients are told of its topics, and how its events become messages.
struct Type {
    char const* name;

    /// Adds the family's branch to the element `tns1:RuleEngine` of the topic set.
    void (*describe)(soap* soap, soap_dom_element& ruleEngine);

    /// Appends at most one message for the event, allocated in the context; returns whether the family has handled it.
    bool (*convert)(soap* soap, std::vector<wsnt__NotificationMessageHolderType*>& messages,
                    std::shared_ptr<meta::data::Event> const& event);
};

/// The families in the order in which an event is offered to them; the first that handles it ends the search.
extern std::array<Type, 4> const Types;

} // namespace zarn::service::onvif::events
