#include "device_fixture.h"
#include "support/operation_element.h"

#include <service/onvif/events.h>
#include <service/onvif/soap_context.h>

#include <gtest/gtest.h>

namespace zarn::test {
namespace {

class UnservedOperation : public DeviceFixture {};

TEST_F(UnservedOperation, AnswersNotSupportedWithoutValidCredentials) {
    auto const notSupported = IsFault("Receiver", "Not supported", {"ter:ActionNotSupported"});
    for (auto const& operation : bindings::Operations) {
        if (operation.IsServed() || !operation.HasElement()) continue;
        auto const element = MakeElement(operation);
        EXPECT_THAT(AskAnonymously(element), notSupported) << element;
        EXPECT_THAT(Ask(element, {.password = "wrong"}), notSupported) << element;
    }
}

TEST_F(UnservedOperation, IgnoresItsRequest) {
    EXPECT_THAT(AskAnonymously("<tds:CreateUsers><tds:User><anything xmlns='urn:x' a='1'>text</anything></tds:User>"
                               "</tds:CreateUsers>"),
                IsFault("Receiver", "Not supported", {"ter:ActionNotSupported"}));
}

TEST(EventOperationOfAFurtherPortType, AnswersNotSupported) {
    using service::onvif::EventsService;
    static _wsnt__RenewResponse renewed;
    static _wsnt__UnsubscribeResponse unsubscribed;
    for (int (*call)(EventsService&) : {
             +[](EventsService& events) { return events.Renew_(nullptr, renewed); },
             +[](EventsService& events) { return events.Unsubscribe_(nullptr, unsubscribed); },
             +[](EventsService& events) { return events.Unsubscribe__(nullptr, unsubscribed); },
             +[](EventsService& events) { return events.Notify_(nullptr); },
         }) {
        auto const context = service::onvif::MakeSoapContext();
        EventsService events(context.get(), service::onvif::URIBase(80, false), nullptr, {});
        EXPECT_EQ(call(events), SOAP_FAULT);
        EXPECT_STREQ(*soap_faultcode(context.get()), "SOAP-ENV:Receiver");
        EXPECT_STREQ(*soap_faultstring(context.get()), "Not supported");
        EXPECT_STREQ(*soap_faultsubcode(context.get()), "ter:ActionNotSupported");
    }
}

} // namespace
} // namespace zarn::test
