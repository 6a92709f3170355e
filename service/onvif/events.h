#pragma once

#include "events_unserved.h"
#include "uri_base.h"

#include <soapPullPointSubscriptionBindingService.h>

class ZarnAuthenticationEngine;

namespace zarn::service::onvif {

/// The ONVIF Events service (ver10/events/wsdl). Lives for one request, on that request's context and thread.
class EventsService final : public PullPointSubscriptionBindingService, private URIBase {
public:
    EventsService(struct soap* soap, URIBase uriBase, ZarnAuthenticationEngine const* engine);

    /// The capabilities of this service, allocated in the context anew; null without memory.
    static tev__Capabilities* MakeServiceCapabilities(struct soap* soap);

    /// Always null: services are made afresh for every request, never cloned.
    PullPointSubscriptionBindingService* copy() override;

    int GetServiceCapabilities(_tev__GetServiceCapabilities* request,
                               _tev__GetServiceCapabilitiesResponse& response) override;
    int SetSynchronizationPoint(_tev__SetSynchronizationPoint* request,
                                _tev__SetSynchronizationPointResponse& response) override;

    ZARN_UNSERVED_EVENTS

    /// One-way messages, which have no response: nobody is notified here.
    int Notify(_wsnt__Notify* message) override;
    int Notify_(_wsnt__Notify* message) override;

private:
    ZarnAuthenticationEngine const* authenticationEngine;
};

} // namespace zarn::service::onvif
