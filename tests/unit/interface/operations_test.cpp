#include "exchange.h"
#include "recording_services.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

namespace zarn::bindings {
namespace {

/// Sends an empty element with this name. Returns the operation that was called, or the status if none was.
template <class Service>
std::string Call(std::string const& element) {
    auto const context = MakeContext();
    Service service(context.get());
    auto const outcome = Serve(context.get(), service, Envelope("<" + element + "/>"));
    return service.called.empty() ? "status " + std::to_string(outcome.status) : service.called;
}

std::string const NoMethod = "status " + std::to_string(SOAP_NO_METHOD);

/// Expects that each element of the prefix calls its operation, and that there are as many.
template <class Service>
void ExpectEachElementCallsItsOperation(std::string_view prefix, std::size_t count) {
    std::size_t found = 0;
    for (auto const& operation : Operations) {
        if (operation.prefix != prefix || !operation.HasElement()) continue;
        ++found;
        EXPECT_EQ(Call<Service>(std::string(prefix) + ":" + std::string(operation.name)), operation.name);
    }
    EXPECT_EQ(found, count);
}

TEST(DeviceBinding, CallsTheOperationOfTheElement) { ExpectEachElementCallsItsOperation<RecordingDevice>("tds", 90); }

TEST(MediaBinding, CallsTheOperationOfTheElement) { ExpectEachElementCallsItsOperation<RecordingMedia>("trt", 79); }

TEST(Media2Binding, CallsTheOperationOfTheElement) { ExpectEachElementCallsItsOperation<RecordingMedia2>("tr2", 46); }

TEST(EventsBinding, CallsTheFirstOperationOfTheElement) {
    ExpectEachElementCallsItsOperation<RecordingEvents>("tev", 6);
    ExpectEachElementCallsItsOperation<RecordingEvents>("wsnt", 10);
}

TEST(AnalyticsBinding, CallsTheOperationOfTheElement) {
    ExpectEachElementCallsItsOperation<RecordingAnalytics>("tan", 14);
}

TEST(OperationsTable, CountsTheOperationsOfEachAccess) {
    auto const count = [](Access access) { return std::ranges::count(Operations, access, &Operation::access); };
    EXPECT_EQ(count(Access::Open), 27);
    EXPECT_EQ(count(Access::Accepted), 6);
    EXPECT_EQ(count(Access::Login), 16);
    EXPECT_EQ(count(Access::Unserved), 198);
    EXPECT_EQ(count(Access::OneWay), 2);
}

TEST(OperationsTable, IsInTheDictionaryOfTheFuzzer) {
    std::ifstream file(ZARN_MANAGER_DICTIONARY);
    std::string const dictionary(std::istreambuf_iterator<char>(file), {});
    for (auto const& operation : Operations) {
        if (!operation.IsServed()) continue;
        EXPECT_THAT(dictionary, testing::HasSubstr("\"<" + std::string(operation.name) + "\"\n"));
    }
}

TEST(Bindings, RejectUnlistedElements) {
    EXPECT_EQ(Call<RecordingDevice>("tds:GetPasswordComplexityConfiguration"), NoMethod);
    EXPECT_EQ(Call<RecordingMedia>("trt:GetVideoSourceModesResponse"), NoMethod);
    EXPECT_EQ(Call<RecordingMedia2>("tr2:GetMediaProfiles"), NoMethod);
    EXPECT_EQ(Call<RecordingEvents>("tev:AddEventBroker"), NoMethod);
    EXPECT_EQ(Call<RecordingAnalytics>("tan:getRules"), NoMethod);
}

TEST(Bindings, DistinguishServicesByNamespace) {
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

TEST(Bindings, SkipTheContentOfUnservedOperations) {
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
