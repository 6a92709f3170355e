#include "exchange.h"
#include "recording_services.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace zarn::bindings {
namespace {

#define ZARN_NAME(operation) #operation,

std::vector<std::string> const DeviceOperations{DEVICE_OPERATIONS(ZARN_NAME)};
std::vector<std::string> const MediaOperations{MEDIA_OPERATIONS(ZARN_NAME)};
std::vector<std::string> const Media2Operations{MEDIA2_OPERATIONS(ZARN_NAME) MEDIA2_GET_OPERATIONS(ZARN_NAME)
                                                    MEDIA2_SET_OPERATIONS(ZARN_NAME) "StartMulticastStreaming",
                                                "StopMulticastStreaming"};
std::vector<std::string> const EventsOperations{EVENTS_OPERATIONS(ZARN_NAME)};
std::vector<std::string> const NotificationOperations{NOTIFICATION_OPERATIONS(ZARN_NAME) "Notify"};
std::vector<std::string> const AnalyticsOperations{ANALYTICS_OPERATIONS(ZARN_NAME)};

#undef ZARN_NAME

/// Sends an empty element of that name and returns the operation that was called, or the status when there was none.
template <class Service>
std::string Call(std::string const& element) {
    auto const context = MakeContext();
    Service service(context.get());
    auto const outcome = Serve(context.get(), service, Envelope("<" + element + "/>"));
    return service.called.empty() ? "status " + std::to_string(outcome.status) : service.called;
}

std::string const NoMethod = "status " + std::to_string(SOAP_NO_METHOD);

template <class Service>
void ExpectEachElementCallsItsOperation(std::string const& prefix, std::vector<std::string> const& operations) {
    for (auto const& operation : operations) {
        EXPECT_EQ(Call<Service>(prefix + ":" + operation), operation);
    }
}

TEST(DeviceBinding, CallsTheOperationThatTheElementNames) {
    EXPECT_EQ(DeviceOperations.size(), 90U);
    ExpectEachElementCallsItsOperation<RecordingDevice>("tds", DeviceOperations);
}

TEST(MediaBinding, CallsTheOperationThatTheElementNames) {
    EXPECT_EQ(MediaOperations.size(), 79U);
    ExpectEachElementCallsItsOperation<RecordingMedia>("trt", MediaOperations);
}

TEST(Media2Binding, CallsTheOperationThatTheElementNames) {
    EXPECT_EQ(Media2Operations.size(), 46U);
    ExpectEachElementCallsItsOperation<RecordingMedia2>("tr2", Media2Operations);
}

TEST(EventsBinding, CallsTheFirstOperationThatTheElementNames) {
    EXPECT_EQ(EventsOperations.size() + NotificationOperations.size(), 20U - 4U); // 4 elements occur again
    ExpectEachElementCallsItsOperation<RecordingEvents>("tev", EventsOperations);
    ExpectEachElementCallsItsOperation<RecordingEvents>("wsnt", NotificationOperations);
}

TEST(AnalyticsBinding, CallsTheOperationThatTheElementNames) {
    EXPECT_EQ(AnalyticsOperations.size(), 14U);
    ExpectEachElementCallsItsOperation<RecordingAnalytics>("tan", AnalyticsOperations);
}

TEST(Bindings, KnowNoElementThatIsNotListed) {
    EXPECT_EQ(Call<RecordingDevice>("tds:GetPasswordComplexityConfiguration"), NoMethod);
    EXPECT_EQ(Call<RecordingMedia>("trt:GetVideoSourceModesResponse"), NoMethod);
    EXPECT_EQ(Call<RecordingMedia2>("tr2:GetMediaProfiles"), NoMethod);
    EXPECT_EQ(Call<RecordingEvents>("tev:AddEventBroker"), NoMethod);
    EXPECT_EQ(Call<RecordingAnalytics>("tan:getRules"), NoMethod);
}

TEST(Bindings, TellServicesApartByNamespace) {
    EXPECT_EQ(Call<RecordingMedia>("tr2:GetProfiles"), NoMethod);
    EXPECT_EQ(Call<RecordingMedia2>("trt:GetProfiles"), NoMethod);
    EXPECT_EQ(Call<RecordingEvents>("tev:Renew"), NoMethod);
    EXPECT_EQ(Call<RecordingDevice>("GetServices"), NoMethod);
}

TEST(Bindings, AcceptAnyPrefixForAKnownNamespace) {
    EXPECT_EQ(Call<RecordingDevice>(R"(tan:GetUsers xmlns:tan="http://www.onvif.org/ver10/device/wsdl")"), "GetUsers");
    EXPECT_EQ(Call<RecordingDevice>(R"(GetUsers xmlns="http://www.onvif.org/ver10/device/wsdl")"), "GetUsers");
}

TEST(Bindings, OfferOneRequestToOneServiceAfterTheOther) {
    auto const context = MakeContext();
    RecordingDevice device(context.get());
    RecordingAnalytics analytics(context.get());
    std::istringstream in(Envelope("<tan:GetRules/>"));
    std::ostringstream out;
    context->is = &in;
    context->os = &out;
    ASSERT_EQ(soap_begin_serve(context.get()), SOAP_OK);
    EXPECT_EQ(device.dispatch(), SOAP_NO_METHOD);
    EXPECT_EQ(analytics.dispatch(), SOAP_OK);
    EXPECT_EQ(analytics.called, "GetRules");
    context->is = nullptr;
    context->os = nullptr;
}

struct AcceptingEvents : RecordingEvents {
    using RecordingEvents::RecordingEvents;

    int Notify(_wsnt__Notify*) override { return send_Notify_empty_response(SOAP_OK); }
};

TEST(EventsBinding, AnswersTheOneWayNotifyWithoutAnEnvelope) {
    auto const context = MakeContext();
    AcceptingEvents service(context.get());
    auto const outcome = Serve(context.get(), service, Envelope("<wsnt:Notify/>"));
    EXPECT_EQ(outcome.status, SOAP_STOP);
    EXPECT_THAT(outcome.response, testing::StartsWith("HTTP/1.1 202 "));
    EXPECT_EQ(outcome.Body(), "");
}

TEST(Bindings, SkipTheContentOfOperationsThatAreNotServed) {
    auto const context = MakeContext();
    RecordingDevice service(context.get());
    auto const outcome =
        Serve(context.get(), service,
              Envelope(R"(<tds:SetHostname a="1">text<tds:Name b="2">x<tt:Deep/></tds:Name></tds:SetHostname>)"));
    EXPECT_EQ(outcome.status, SOAP_OK);
    EXPECT_EQ(service.called, "SetHostname");
}

} // namespace
} // namespace zarn::bindings
