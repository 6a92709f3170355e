#include "exchange.h"
#include "recording_services.h"

#include <gmock/gmock.h>

#include <map>
#include <string>

extern "C" {
extern struct Namespace namespaces[]; // NOLINT: gSOAP's name for the process-wide table
}

namespace zarn::bindings {
namespace {

using Table = std::map<std::string, std::string>;

Table const Expected{
    {"SOAP-ENV", "http://www.w3.org/2003/05/soap-envelope"}, {"SOAP-ENC", "http://www.w3.org/2003/05/soap-encoding"},
    {"xsi", "http://www.w3.org/2001/XMLSchema-instance"},    {"xsd", "http://www.w3.org/2001/XMLSchema"},
    {"wsa5", "http://www.w3.org/2005/08/addressing"},        {"wsnt", "http://docs.oasis-open.org/wsn/b-2"},
    {"wstop", "http://docs.oasis-open.org/wsn/t-1"},         {"tt", "http://www.onvif.org/ver10/schema"},
    {"tds", "http://www.onvif.org/ver10/device/wsdl"},       {"trt", "http://www.onvif.org/ver10/media/wsdl"},
    {"tr2", "http://www.onvif.org/ver20/media/wsdl"},        {"tev", "http://www.onvif.org/ver10/events/wsdl"},
    {"tan", "http://www.onvif.org/ver20/analytics/wsdl"},    {"ter", "http://www.onvif.org/ver10/error"},
    {"tns1", "http://www.onvif.org/ver10/topics"},
};

Table Read(Namespace const* row) {
    Table table;
    for (; row->id != nullptr; ++row) {
        EXPECT_TRUE(table.emplace(row->id, row->ns).second) << row->id << " occurs twice";
    }
    return table;
}

/// The namespace table of a context after a service has been offered a request.
template <class Service>
Table AfterDispatch() {
    auto const context = MakeContext();
    Namespace const none[] = {{nullptr, nullptr, nullptr, nullptr}};
    Service service(context.get());
    soap_set_namespaces(context.get(), none);
    EXPECT_EQ(service.dispatch(), SOAP_NO_METHOD);
    return Read(context->namespaces);
}

TEST(NamespaceTable, OfTheProcessContainsExactlyTheExpectedNamespaces) { EXPECT_EQ(Read(namespaces), Expected); }

TEST(NamespaceTable, IsInstalledCompletelyByEveryDispatch) {
    EXPECT_EQ(AfterDispatch<RecordingDevice>(), Expected);
    EXPECT_EQ(AfterDispatch<RecordingMedia>(), Expected);
    EXPECT_EQ(AfterDispatch<RecordingMedia2>(), Expected);
    EXPECT_EQ(AfterDispatch<RecordingEvents>(), Expected);
    EXPECT_EQ(AfterDispatch<RecordingAnalytics>(), Expected);
}

TEST(NamespaceTable, ResolvesThePrefixOfEveryQNameAndTopic) {
    for (std::string const value : {"ter:ActionNotSupported",
                                    "ter:InvalidArgVal",
                                    "ter:InvalidArgs",
                                    "ter:FixedUser",
                                    "ter:NoProfile",
                                    "tns1:RuleEngine/FieldDetector/ObjectsInside",
                                    "tns1:RuleEngine/LineDetector/Crossed",
                                    "tns1:RuleEngine/LoiteringDetector/ObjectIsLoitering",
                                    "tns1:RuleEngine/CountAggregation/Counter",
                                    "tns1:VideoSource/MotionAlarm",
                                    "tt:ReferenceToken",
                                    "tt:MessageDescription",
                                    "xsd:string",
                                    "xsd:integer",
                                    "xsd:boolean",
                                    "xsd:dateTime",
                                    "wstop:topic",
                                    "tev:Capabilities",
                                    "tds:Capabilities",
                                    "trt:Capabilities",
                                    "tr2:Capabilities",
                                    "tan:Capabilities"}) {
        EXPECT_THAT(Read(namespaces), testing::Contains(testing::Key(value.substr(0, value.find(':'))))) << value;
    }
}

TEST(NamespaceTable, IsDeclaredByEveryResponse) {
    auto const context = MakeContext();
    RecordingDevice service(context.get());
    auto const response = Serve(context.get(), service, Envelope("<tds:GetUsers/>")).response;
    for (auto const& [prefix, uri] : Expected) {
        EXPECT_THAT(response, testing::HasSubstr(" xmlns:" + prefix + "=\"" + uri + "\""));
    }
}

struct RefusingDevice : RecordingDevice {
    using RecordingDevice::RecordingDevice;

    int GetDNS(_tds__GetDNS*, _tds__GetDNSResponse&) override {
        return soap_receiver_fault_subcode(soap, "ter:ActionNotSupported", "Not supported", nullptr);
    }
};

TEST(NamespaceTable, IsDeclaredByEveryFault) {
    auto const context = MakeContext();
    RefusingDevice service(context.get());
    EXPECT_EQ(Serve(context.get(), service, Envelope("<tds:GetDNS/>")).status, SOAP_FAULT);
    std::ostringstream out;
    context->os = &out;
    soap_send_fault(context.get());
    context->os = nullptr;
    EXPECT_THAT(out.str(), testing::HasSubstr(R"( xmlns:ter="http://www.onvif.org/ver10/error")"));
    EXPECT_THAT(out.str(), testing::HasSubstr("<SOAP-ENV:Value>SOAP-ENV:Receiver</SOAP-ENV:Value><SOAP-ENV:Subcode>"
                                              "<SOAP-ENV:Value>ter:ActionNotSupported</SOAP-ENV:Value>"));
}

} // namespace
} // namespace zarn::bindings
