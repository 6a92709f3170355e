#pragma once

#include "service.h"

#include <soapRuleEngineBindingService.h>

namespace zarn::service::onvif {

/// The ONVIF Analytics service (ver20/analytics/wsdl): presents the host's whole analytics engine as one module. Rules
/// can be neither read nor changed through it.
class AnalyticsService final : public Service<RuleEngineBindingService> {
public:
    using Service::Service;

    /// The capabilities of this service, allocated in the context; null without memory.
    static tan__Capabilities* MakeServiceCapabilities(struct soap* soap);

    ZARN_ANALYTICS_OPERATIONS(ZARN_DECLARE)
};

} // namespace zarn::service::onvif
