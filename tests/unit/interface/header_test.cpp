#include "exchange.h"
#include "recording_services.h"

#include <gmock/gmock.h>

#include <cstring>
#include <string>

namespace zarn::bindings {
namespace {

constexpr auto SecurityNamespace = "http://docs.oasis-open.org/wss/2004/01/oasis-200401-wss-wssecurity-secext-1.0.xsd";

std::string const Security =
    R"(<security:Security c:mustUnderstand="true"><security:UsernameToken>)"
    "<security:Username>admin</security:Username></security:UsernameToken></security:Security>";

/// Skips the security header, matched by namespace, and rejects any other header that must be understood.
int SkipSecurity(soap* context, char const* tag) {
    char const* const uri = soap_current_namespace_tag(context, tag);
    char const* const colon = std::strchr(tag, ':');
    if (uri != nullptr && std::strcmp(uri, SecurityNamespace) == 0 &&
        std::strcmp(colon != nullptr ? colon + 1 : tag, "Security") == 0) {
        return SOAP_OK;
    }
    return context->mustUnderstand != 0 && context->other == 0 ? SOAP_MUSTUNDERSTAND : SOAP_OK;
}

class Header : public testing::Test {
protected:
    Outcome ServeWith(std::string const& header) {
        service.called.clear();
        return Serve(context.get(), service, Envelope("<tds:GetUsers/>", header));
    }

    Context const context = MakeContext();
    RecordingDevice service{context.get()};
};

class HeaderWithCallback : public Header {
protected:
    HeaderWithCallback() { context->fignore = SkipSecurity; }
};

TEST_F(Header, OfMandatorySecurityIsRefusedByGsoapItself) {
    EXPECT_EQ(ServeWith(Security).status, SOAP_MUSTUNDERSTAND);
    EXPECT_EQ(service.called, "");
}

TEST_F(HeaderWithCallback, OfSecurityIsSkippedAndNotSentBack) {
    auto const outcome = ServeWith(Security);
    EXPECT_EQ(outcome.status, SOAP_OK);
    EXPECT_EQ(service.called, "GetUsers");
    EXPECT_THAT(outcome.response, testing::Not(testing::HasSubstr("admin")));
    EXPECT_THAT(outcome.response, testing::Not(testing::HasSubstr("Security")));
}

TEST_F(HeaderWithCallback, OfSecurityIsRecognisedByNamespaceUnderAnyPrefix) {
    auto const header = [](std::string const& name, std::string const& declaration) {
        return "<" + name + " " + declaration + "=\"" + SecurityNamespace + "\" c:mustUnderstand=\"1\"/>";
    };
    EXPECT_EQ(ServeWith(header("o:Security", "xmlns:o")).status, SOAP_OK);
    EXPECT_EQ(ServeWith(header("tt:Security", "xmlns:tt")).status, SOAP_OK);
    EXPECT_EQ(ServeWith(header("Security", "xmlns")).status, SOAP_OK);
}

TEST_F(HeaderWithCallback, ThatIsMandatoryAndUnknownIsRefused) {
    EXPECT_EQ(ServeWith(R"(<security:Other c:mustUnderstand="true"/>)").status, SOAP_MUSTUNDERSTAND);
    EXPECT_EQ(ServeWith(R"(<tt:Security c:mustUnderstand="true"/>)").status, SOAP_MUSTUNDERSTAND);
    EXPECT_EQ(ServeWith(R"(<o:Security xmlns:o="urn:o" c:mustUnderstand="true"/>)").status, SOAP_MUSTUNDERSTAND);
    EXPECT_EQ(service.called, "");
}

TEST_F(HeaderWithCallback, OfAddressing2004IsUnknown) {
    EXPECT_EQ(
        ServeWith(R"(<a:To xmlns:a="http://schemas.xmlsoap.org/ws/2004/08/addressing" c:mustUnderstand="1">x</a:To>)")
            .status,
        SOAP_MUSTUNDERSTAND);
}

TEST_F(HeaderWithCallback, ThatIsOptionalIsSkipped) {
    EXPECT_EQ(ServeWith("<tt:Anything><tt:Deep>x</tt:Deep></tt:Anything>").status, SOAP_OK);
    EXPECT_EQ(ServeWith(R"(<tt:Anything c:mustUnderstand="false"/>)").status, SOAP_OK);
}

TEST_F(HeaderWithCallback, ForAnotherRoleIsOptional) {
    EXPECT_EQ(ServeWith(R"(<tt:Anything c:mustUnderstand="true" c:role="http://example.com/other"/>)").status, SOAP_OK);
}

std::string const Addressing =
    "<wsa5:MessageID>urn:uuid:1</wsa5:MessageID><wsa5:ReplyTo c:mustUnderstand=\"true\"><wsa5:Address>"
    "http://www.w3.org/2005/08/addressing/anonymous</wsa5:Address><wsa5:ReferenceParameters><tt:Kept>no</tt:Kept>"
    "</wsa5:ReferenceParameters></wsa5:ReplyTo><wsa5:To c:mustUnderstand=\"true\">http://device/onvif</wsa5:To>"
    "<wsa5:Action c:mustUnderstand=\"true\">http://www.onvif.org/ver10/device/wsdl/GetUsers</wsa5:Action>";

TEST_F(Header, OfAddressingIsRead) {
    ServeWith(Addressing);
    auto const* const header = context->header;
    ASSERT_NE(header, nullptr);
    EXPECT_STREQ(header->wsa5__MessageID, "urn:uuid:1");
    EXPECT_STREQ(header->wsa5__To, "http://device/onvif");
    EXPECT_STREQ(header->wsa5__Action, "http://www.onvif.org/ver10/device/wsdl/GetUsers");
    ASSERT_NE(header->wsa5__ReplyTo, nullptr);
    EXPECT_STREQ(header->wsa5__ReplyTo->Address, "http://www.w3.org/2005/08/addressing/anonymous");
    EXPECT_EQ(header->wsa5__RelatesTo, nullptr);
}

TEST_F(Header, IsSentBackByGsoapUnlessReplaced) {
    EXPECT_THAT(ServeWith(Addressing).Body(),
                testing::HasSubstr("<SOAP-ENV:Header><wsa5:MessageID>urn:uuid:1</wsa5:MessageID>"
                                   R"(<wsa5:ReplyTo SOAP-ENV:mustUnderstand="true">)"));
}

TEST_F(Header, IsAbsentFromTheResponseToARequestWithoutOne) {
    EXPECT_THAT(ServeWith("").Body(), testing::StartsWith("<SOAP-ENV:Envelope><SOAP-ENV:Body>"));
}

/// Answers as required by WS-Addressing 1.0.
struct AddressingDevice : RecordingDevice {
    using RecordingDevice::RecordingDevice;

    int GetUsers(_tds__GetUsers*, _tds__GetUsersResponse&) override {
        auto* const relatesTo = soap_new_wsa5__RelatesToType(soap);
        relatesTo->__item = soap->header->wsa5__MessageID;
        soap_default_SOAP_ENV__Header(soap, soap->header);
        soap->header->wsa5__RelatesTo = relatesTo;
        return SOAP_OK;
    }
};

TEST_F(Header, RelatesTheResponseToTheRequest) {
    AddressingDevice addressing(context.get());
    auto const body = Serve(context.get(), addressing, Envelope("<tds:GetUsers/>", Addressing)).Body();
    EXPECT_THAT(body,
                testing::HasSubstr("<SOAP-ENV:Header><wsa5:RelatesTo>urn:uuid:1</wsa5:RelatesTo></SOAP-ENV:Header>"));
}

} // namespace
} // namespace zarn::bindings
