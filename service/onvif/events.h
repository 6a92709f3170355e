#pragma once

#include "service.h"
#include "subscription.h"
#include "uri_base.h"

#include <soapPullPointSubscriptionBindingService.h>

#include <memory>
#include <string_view>
#include <vector>

namespace zarn::service::onvif {

/// The ONVIF Events service (ver10/events/wsdl), pull points only. The subscriptions are those of the process.
class EventsService final : public Service<PullPointSubscriptionBindingService>, private URIBase {
public:
    /// The first one registers for the host's events, for as long as the library is loaded.
    /// message  the SOAP message of the request; must outlive the service
    EventsService(struct soap* soap, URIBase uriBase, ZarnAuthenticationEngine const* engine, std::string_view message);

    /// The capabilities of this service, allocated in the context; null without memory.
    static tev__Capabilities* MakeServiceCapabilities(struct soap* soap);

    ZARN_EVENTS_OPERATIONS(ZARN_DECLARE)

private:
    using Service::Prepare;
    void Prepare(_tev__CreatePullPointSubscriptionResponse const&);
    void Prepare(_tev__PullMessagesResponse const&);
    void SetActionHeader(char const* uri);
    /// Subscription::WaitForEvents for this exchange; a null `oldest` leaves the events in the queue.
    bool WaitForEvents(Subscription& subscription, std::chrono::steady_clock::time_point deadline, EventPtr* oldest);

    /// Appends the event's message, if it has one that the client wants; builds no other. Returns whether it counts
    /// towards the limit.
    bool Append(EventPtr const& event, events::WantedTopics const& topics,
                std::vector<wsnt__NotificationMessageHolderType*>& messages);

    std::string_view message;
};

} // namespace zarn::service::onvif
