#include "support/failing_nothrow_new.h"

#include <service/onvif/soap_context.h>
#include <service/onvif/soap_fault.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <soapH.h>

#include <string>
#include <vector>

namespace zarn::service::onvif {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;

class Fault : public testing::Test {
protected:
    Fault() { context->version = 2; } // SOAP 1.2, as set when an envelope is read

    std::vector<std::string> Subcodes() const {
        std::vector<std::string> subcodes;
        for (auto const* code = context->fault->SOAP_ENV__Code->SOAP_ENV__Subcode; code; code = code->SOAP_ENV__Subcode)
            subcodes.emplace_back(code->SOAP_ENV__Value);
        return subcodes;
    }

    std::shared_ptr<soap> context = MakeSoapContext();
};

TEST_F(Fault, OfTheSenderHasCodeReasonAndSubcodesOutermostFirst) {
    EXPECT_EQ(SoapFault(context.get(), FaultCode::Sender, "Profile not found", "ter:InvalidArgVal", "ter:NoProfile"),
              SOAP_FAULT);
    EXPECT_THAT(std::string(context->fault->SOAP_ENV__Code->SOAP_ENV__Value), EndsWith(":Sender"));
    EXPECT_STREQ(*soap_faultstring(context.get()), "Profile not found");
    EXPECT_THAT(Subcodes(), ElementsAre("ter:InvalidArgVal", "ter:NoProfile"));
    EXPECT_EQ(context->fault->SOAP_ENV__Detail, nullptr);
}

TEST_F(Fault, OfTheReceiverHasTheReceiverCode) {
    EXPECT_EQ(SoapFault(context.get(), FaultCode::Receiver, "reason", "ter:Action"), SOAP_FAULT);
    EXPECT_THAT(std::string(context->fault->SOAP_ENV__Code->SOAP_ENV__Value), EndsWith(":Receiver"));
    EXPECT_THAT(Subcodes(), ElementsAre("ter:Action"));
}

TEST_F(Fault, OfAnUnknownCodeHasTheReceiverCode) {
    SoapFault(context.get(), static_cast<FaultCode>(7), "reason", "ter:Action");
    EXPECT_THAT(std::string(context->fault->SOAP_ENV__Code->SOAP_ENV__Value), EndsWith(":Receiver"));
}

TEST_F(Fault, KeepsItsOwnCopyOfTheSubcodes) {
    std::string subcode = "ter:First";
    SoapFault(context.get(), FaultCode::Sender, "reason", subcode.c_str());
    subcode = "ter:Other";
    EXPECT_THAT(Subcodes(), ElementsAre("ter:First"));
}

TEST_F(Fault, ReportsAnUnservedOperationAsNotSupported) {
    EXPECT_EQ(NotSupported(context.get()), SOAP_FAULT);
    EXPECT_STREQ(*soap_faultstring(context.get()), "Not supported");
    EXPECT_THAT(Subcodes(), ElementsAre("ter:ActionNotSupported"));
}

TEST_F(Fault, OmitsItsSubcodesWithoutMemory) {
    // The fault and its code already exist; only the subcodes remain to be allocated.
    SoapFault(context.get(), FaultCode::Sender, "earlier", "ter:Earlier");
    test::FailingNothrowNew const failing(1);
    EXPECT_EQ(SoapFault(context.get(), FaultCode::Sender, "reason", "ter:Outer", "ter:Inner"), SOAP_FAULT);
    EXPECT_STREQ(*soap_faultstring(context.get()), "reason");
    EXPECT_THAT(Subcodes(), IsEmpty());
}

TEST_F(Fault, LosesTheInnerSubcodeWithoutMemory) {
    SoapFault(context.get(), FaultCode::Sender, "earlier", "ter:Earlier");
    test::FailingNothrowNew const failing(0, 1); // the innermost subcode is allocated first
    EXPECT_EQ(SoapFault(context.get(), FaultCode::Sender, "reason", "ter:Outer", "ter:Inner"), SOAP_FAULT);
    EXPECT_THAT(Subcodes(), ElementsAre("ter:Outer"));
}

} // namespace
} // namespace zarn::service::onvif
