#pragma once

#include "unserved.h"

/// The operations of the service that this device does not serve, in alphabetical order.
#define ZARN_UNSERVED_ANALYTICS                                                                                        \
    ZARN_UNSERVED(tan, CreateAnalyticsModules)                                                                         \
    ZARN_UNSERVED(tan, CreateRules)                                                                                    \
    ZARN_UNSERVED(tan, DeleteAnalyticsModules)                                                                         \
    ZARN_UNSERVED(tan, DeleteRules)                                                                                    \
    ZARN_UNSERVED(tan, GetAnalyticsModuleOptions)                                                                      \
    ZARN_UNSERVED(tan, GetRuleOptions)                                                                                 \
    ZARN_UNSERVED(tan, GetRules)                                                                                       \
    ZARN_UNSERVED(tan, GetSupportedRules)                                                                              \
    ZARN_UNSERVED(tan, ModifyAnalyticsModules)                                                                         \
    ZARN_UNSERVED(tan, ModifyRules)
