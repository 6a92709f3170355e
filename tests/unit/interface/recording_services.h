#pragma once

#include "operations.h"

#include <soapDeviceBindingService.h>
#include <soapMedia2BindingService.h>
#include <soapMediaBindingService.h>
#include <soapPullPointSubscriptionBindingService.h>
#include <soapRuleEngineBindingService.h>

#include <string>

namespace zarn::bindings {

/// Remembers which operation was called last. Every operation succeeds with an empty response.
struct Recorder {
    std::string called;

    int Record(char const* operation) {
        called = operation;
        return SOAP_OK;
    }
};

// The classes below override every operation in the lists and no other, and the bindings are compiled so that
// operations are pure virtual: that they compile and can be constructed shows that the lists and the bindings agree
// exactly.

#define ZARN_RECORD(operation, Request, Response)                                                                      \
    int operation(Request*, Response&) override { return Record(#operation); }

#define ZARN_RECORD_TDS(operation) ZARN_RECORD(operation, _tds__##operation, _tds__##operation##Response)
#define ZARN_RECORD_TRT(operation) ZARN_RECORD(operation, _trt__##operation, _trt__##operation##Response)
#define ZARN_RECORD_TR2(operation) ZARN_RECORD(operation, _tr2__##operation, _tr2__##operation##Response)
#define ZARN_RECORD_TR2_GET(operation) ZARN_RECORD(operation, tr2__GetConfiguration, _tr2__##operation##Response)
#define ZARN_RECORD_TR2_SET(operation) ZARN_RECORD(operation, _tr2__##operation, tr2__SetConfigurationResponse)
#define ZARN_RECORD_TEV(operation) ZARN_RECORD(operation, _tev__##operation, _tev__##operation##Response)
#define ZARN_RECORD_WSNT(operation) ZARN_RECORD(operation, _wsnt__##operation, _wsnt__##operation##Response)
#define ZARN_RECORD_TAN(operation) ZARN_RECORD(operation, _tan__##operation, _tan__##operation##Response)

struct RecordingDevice : DeviceBindingService, Recorder {
    using DeviceBindingService::DeviceBindingService;

    DeviceBindingService* copy() override { return nullptr; }

    DEVICE_OPERATIONS(ZARN_RECORD_TDS)
};

struct RecordingMedia : MediaBindingService, Recorder {
    using MediaBindingService::MediaBindingService;

    MediaBindingService* copy() override { return nullptr; }

    MEDIA_OPERATIONS(ZARN_RECORD_TRT)
};

struct RecordingMedia2 : Media2BindingService, Recorder {
    using Media2BindingService::Media2BindingService;

    Media2BindingService* copy() override { return nullptr; }

    MEDIA2_OPERATIONS(ZARN_RECORD_TR2)
    MEDIA2_GET_OPERATIONS(ZARN_RECORD_TR2_GET)
    MEDIA2_SET_OPERATIONS(ZARN_RECORD_TR2_SET)
    ZARN_RECORD(StartMulticastStreaming, tr2__StartStopMulticastStreaming, tr2__SetConfigurationResponse)
    ZARN_RECORD(StopMulticastStreaming, tr2__StartStopMulticastStreaming, tr2__SetConfigurationResponse)
};

struct RecordingEvents : PullPointSubscriptionBindingService, Recorder {
    using PullPointSubscriptionBindingService::PullPointSubscriptionBindingService;

    PullPointSubscriptionBindingService* copy() override { return nullptr; }

    EVENTS_OPERATIONS(ZARN_RECORD_TEV)
    NOTIFICATION_OPERATIONS(ZARN_RECORD_WSNT)
    ZARN_RECORD(Renew_, _wsnt__Renew, _wsnt__RenewResponse)
    ZARN_RECORD(Unsubscribe_, _wsnt__Unsubscribe, _wsnt__UnsubscribeResponse)
    ZARN_RECORD(Unsubscribe__, _wsnt__Unsubscribe, _wsnt__UnsubscribeResponse)

    int Notify(_wsnt__Notify*) override { return Record("Notify"); }

    int Notify_(_wsnt__Notify*) override { return Record("Notify_"); }
};

struct RecordingAnalytics : RuleEngineBindingService, Recorder {
    using RuleEngineBindingService::RuleEngineBindingService;

    RuleEngineBindingService* copy() override { return nullptr; }

    ANALYTICS_OPERATIONS(ZARN_RECORD_TAN)
};

#undef ZARN_RECORD_TAN
#undef ZARN_RECORD_WSNT
#undef ZARN_RECORD_TEV
#undef ZARN_RECORD_TR2_SET
#undef ZARN_RECORD_TR2_GET
#undef ZARN_RECORD_TR2
#undef ZARN_RECORD_TRT
#undef ZARN_RECORD_TDS
#undef ZARN_RECORD

} // namespace zarn::bindings
