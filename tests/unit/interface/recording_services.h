#pragma once

#include <interface/operations.h>
#include <soapDeviceBindingService.h>
#include <soapMedia2BindingService.h>
#include <soapMediaBindingService.h>
#include <soapPullPointSubscriptionBindingService.h>
#include <soapRuleEngineBindingService.h>

#include <string>

namespace zarn::bindings {

/// Records the last operation called. Every operation succeeds with an empty response.
struct Recorder {
    std::string called;

    int Record(char const* operation) {
        called = operation;
        return SOAP_OK;
    }
};

#define ZARN_RECORD(access, prefix, operation, ...) ZARN_RECORD_##access(operation)
#define ZARN_RECORD_Open(operation)                                                                                    \
    int operation(RequestOf<&Binding::operation>*, ResponseOf<&Binding::operation>&) override {                        \
        return Record(#operation);                                                                                     \
    }
#define ZARN_RECORD_Accepted ZARN_RECORD_Open
#define ZARN_RECORD_Login ZARN_RECORD_Open
#define ZARN_RECORD_Unserved ZARN_RECORD_Open
#define ZARN_RECORD_OneWay(operation)                                                                                  \
    int operation(RequestOf<&Binding::operation>*) override { return Record(#operation); }

// The bindings are compiled so that operations are pure virtual: that these classes can be constructed shows that the
// table lacks none.
#define ZARN_RECORDING(Name, BindingService, OPERATIONS)                                                               \
    struct Name : BindingService, Recorder {                                                                           \
        using Binding = BindingService;                                                                                \
        using BindingService::BindingService;                                                                          \
        BindingService* copy() override { return nullptr; }                                                            \
        OPERATIONS(ZARN_RECORD)                                                                                        \
    };

ZARN_RECORDING(RecordingDevice, DeviceBindingService, ZARN_DEVICE_OPERATIONS)
ZARN_RECORDING(RecordingMedia, MediaBindingService, ZARN_MEDIA_OPERATIONS)
ZARN_RECORDING(RecordingMedia2, Media2BindingService, ZARN_MEDIA2_OPERATIONS)
ZARN_RECORDING(RecordingEvents, PullPointSubscriptionBindingService, ZARN_EVENTS_OPERATIONS)
ZARN_RECORDING(RecordingAnalytics, RuleEngineBindingService, ZARN_ANALYTICS_OPERATIONS)

#undef ZARN_RECORDING
#undef ZARN_RECORD_OneWay
#undef ZARN_RECORD_Unserved
#undef ZARN_RECORD_Login
#undef ZARN_RECORD_Accepted
#undef ZARN_RECORD_Open
#undef ZARN_RECORD

} // namespace zarn::bindings
