#include "events.h"

#include "capability_values.h"
#include "filled.h"

namespace zarn::service::onvif {

EventsService::EventsService(struct soap* soap, URIBase uriBase, ZarnAuthenticationEngine const* engine)
    : PullPointSubscriptionBindingService(soap), URIBase(uriBase), authenticationEngine(engine) {}

PullPointSubscriptionBindingService* EventsService::copy() { return nullptr; }

tev__Capabilities* EventsService::MakeServiceCapabilities(struct soap* soap) {
    return Filled(soap_new_tev__Capabilities(soap), [](tev__Capabilities& capabilities) {
        capabilities.WSSubscriptionPolicySupport = &FalseValue;
        capabilities.WSPullPointSupport = &TrueValue;
        capabilities.WSPausableSubscriptionManagerInterfaceSupport = &FalseValue;
        capabilities.MaxNotificationProducers = &IntMax;
        capabilities.MaxPullPoints = &IntMax;
        capabilities.PersistentNotificationStorage = &FalseValue;
    });
}

int EventsService::GetServiceCapabilities(_tev__GetServiceCapabilities*,
                                          _tev__GetServiceCapabilitiesResponse& response) {
    response.Capabilities = MakeServiceCapabilities(soap);
    return SOAP_OK;
}

int EventsService::SetSynchronizationPoint(_tev__SetSynchronizationPoint*, _tev__SetSynchronizationPointResponse&) {
    return SOAP_OK;
}

int EventsService::Notify(_wsnt__Notify*) { return NotSupported(soap); }

int EventsService::Notify_(_wsnt__Notify*) { return NotSupported(soap); }

} // namespace zarn::service::onvif
