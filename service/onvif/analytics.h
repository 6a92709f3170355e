#pragma once

#include "analytics_unserved.h"

#include <soapRuleEngineBindingService.h>

class ZarnAuthenticationEngine;

namespace zarn::service::onvif {

/// The ONVIF Analytics service (ver20/analytics/wsdl): presents the host's whole analytics engine as one module. Rules
/// can be neither read nor changed through it. Lives for one request, on that request's context and thread.
class AnalyticsService final : public RuleEngineBindingService {
public:
    AnalyticsService(struct soap* soap, ZarnAuthenticationEngine const* engine);

    /// The capabilities of this service, allocated in the context anew; null without memory.
    static tan__Capabilities* MakeServiceCapabilities(struct soap* soap);

    /// Always null: services are made afresh for every request, never cloned.
    RuleEngineBindingService* copy() override;

    // The operations; what they have in common stands at URIBase.

    int GetServiceCapabilities(_tan__GetServiceCapabilities* request,
                               _tan__GetServiceCapabilitiesResponse& response) override;
    int GetSupportedAnalyticsModules(_tan__GetSupportedAnalyticsModules* request,
                                     _tan__GetSupportedAnalyticsModulesResponse& response) override;
    int GetAnalyticsModules(_tan__GetAnalyticsModules* request, _tan__GetAnalyticsModulesResponse& response) override;
    int GetSupportedMetadata(_tan__GetSupportedMetadata* request,
                             _tan__GetSupportedMetadataResponse& response) override;

    ZARN_UNSERVED_ANALYTICS

private:
    ZarnAuthenticationEngine const* authenticationEngine;
};

} // namespace zarn::service::onvif
