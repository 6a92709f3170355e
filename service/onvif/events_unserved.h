#pragma once

#include "unserved.h"

/// The operations of the service that this device does not serve, in alphabetical order; `Renew_`, `Unsubscribe_` and
/// `Unsubscribe__` are the entries of further port types for elements that the first one takes.
#define ZARN_UNSERVED_EVENTS                                                                                           \
    ZARN_UNSERVED(wsnt, CreatePullPoint)                                                                               \
    ZARN_UNSERVED(wsnt, DestroyPullPoint)                                                                              \
    ZARN_UNSERVED(wsnt, GetCurrentMessage)                                                                             \
    ZARN_UNSERVED(wsnt, GetMessages)                                                                                   \
    ZARN_UNSERVED(wsnt, PauseSubscription)                                                                             \
    ZARN_UNSERVED_AS(Renew_, _wsnt__Renew, _wsnt__RenewResponse)                                                       \
    ZARN_UNSERVED(wsnt, ResumeSubscription)                                                                            \
    ZARN_UNSERVED(tev, Seek)                                                                                           \
    ZARN_UNSERVED(wsnt, Subscribe)                                                                                     \
    ZARN_UNSERVED_AS(Unsubscribe_, _wsnt__Unsubscribe, _wsnt__UnsubscribeResponse)                                     \
    ZARN_UNSERVED_AS(Unsubscribe__, _wsnt__Unsubscribe, _wsnt__UnsubscribeResponse)
