#include "exchange.h"
#include "recording_services.h"

#include <gmock/gmock.h>

#include <functional>
#include <string>

namespace zarn::bindings {
namespace {

using testing::ElementsAre;
using testing::SizeIs;

// Each service below passes an operation's request to the test.
#define ZARN_SHOW(operation, Request, Response)                                                                        \
    std::function<void(Request&)> on##operation;                                                                       \
    int operation(Request* request, Response&) override {                                                              \
        EXPECT_NE(request, nullptr);                                                                                   \
        if (request != nullptr) {                                                                                      \
            Record(#operation);                                                                                        \
            on##operation(*request);                                                                                   \
        }                                                                                                              \
        return SOAP_OK;                                                                                                \
    }

struct ShowingDevice : RecordingDevice {
    using RecordingDevice::RecordingDevice;
    ZARN_SHOW(GetServices, _tds__GetServices, _tds__GetServicesResponse)
};

struct ShowingMedia : RecordingMedia {
    using RecordingMedia::RecordingMedia;
    ZARN_SHOW(GetStreamUri, _trt__GetStreamUri, _trt__GetStreamUriResponse)
    ZARN_SHOW(GetProfile, _trt__GetProfile, _trt__GetProfileResponse)
    ZARN_SHOW(GetVideoEncoderConfigurationOptions, _trt__GetVideoEncoderConfigurationOptions,
              _trt__GetVideoEncoderConfigurationOptionsResponse)
};

struct ShowingMedia2 : RecordingMedia2 {
    using RecordingMedia2::RecordingMedia2;
    ZARN_SHOW(GetProfiles, _tr2__GetProfiles, _tr2__GetProfilesResponse)
    ZARN_SHOW(GetStreamUri, _tr2__GetStreamUri, _tr2__GetStreamUriResponse)
    ZARN_SHOW(GetVideoSourceConfigurationOptions, tr2__GetConfiguration,
              _tr2__GetVideoSourceConfigurationOptionsResponse)
};

struct ShowingEvents : RecordingEvents {
    using RecordingEvents::RecordingEvents;
    ZARN_SHOW(CreatePullPointSubscription, _tev__CreatePullPointSubscription, _tev__CreatePullPointSubscriptionResponse)
    ZARN_SHOW(PullMessages, _tev__PullMessages, _tev__PullMessagesResponse)
    ZARN_SHOW(Renew, _wsnt__Renew, _wsnt__RenewResponse)
};

#undef ZARN_SHOW

template <class Service>
class Requests : public testing::Test {
protected:
    /// Serves the element with this content and expects that it reaches its operation.
    void Send(std::string const& prefix, std::string const& operation, std::string const& content) {
        auto const name = prefix + ":" + operation;
        auto const outcome = Serve(context.get(), service, Envelope("<" + name + ">" + content + "</" + name + ">"));
        EXPECT_EQ(outcome.status, SOAP_OK);
        EXPECT_EQ(service.called, operation);
    }

    Context const context = MakeContext();
    Service service{context.get()};
};

using DeviceRequests = Requests<ShowingDevice>;
using MediaRequests = Requests<ShowingMedia>;
using Media2Requests = Requests<ShowingMedia2>;
using EventsRequests = Requests<ShowingEvents>;

TEST_F(DeviceRequests, GetServicesReadsIncludeCapability) {
    bool wanted = false;
    service.onGetServices = [&](auto& request) { wanted = request.IncludeCapability; };
    Send("tds", "GetServices", "<tds:IncludeCapability>true</tds:IncludeCapability>");
    EXPECT_TRUE(wanted);
    Send("tds", "GetServices", "<tds:IncludeCapability>false</tds:IncludeCapability>");
    EXPECT_FALSE(wanted);
}

TEST_F(MediaRequests, GetStreamUriReadsTheToken) {
    service.onGetStreamUri = [](auto& request) { EXPECT_EQ(request.ProfileToken, "channels.1"); };
    Send("trt", "GetStreamUri", "<trt:ProfileToken>channels.1</trt:ProfileToken>");
}

TEST_F(MediaRequests, GetProfileReadsAMissingTokenAsEmpty) {
    service.onGetProfile = [](auto& request) { EXPECT_EQ(request.ProfileToken, ""); };
    Send("trt", "GetProfile", "");
}

TEST_F(MediaRequests, GetVideoEncoderConfigurationOptionsDistinguishesTokens) {
    service.onGetVideoEncoderConfigurationOptions = [](auto& request) {
        EXPECT_EQ(request.ConfigurationToken, nullptr);
    };
    Send("trt", "GetVideoEncoderConfigurationOptions", "<trt:ProfileToken>channels.1</trt:ProfileToken>");
}

TEST_F(Media2Requests, GetProfilesReadsTokenAndTypes) {
    service.onGetProfiles = [](auto& request) {
        ASSERT_NE(request.Token, nullptr);
        EXPECT_EQ(*request.Token, "channels.1");
        EXPECT_THAT(request.Type, ElementsAre("Metadata", "All"));
    };
    Send("tr2", "GetProfiles",
         "<tr2:Token>channels.1</tr2:Token><tr2:Type>Metadata</tr2:Type><tr2:Type>All</tr2:Type>");
}

TEST_F(Media2Requests, GetStreamUriReadsTheToken) {
    service.onGetStreamUri = [](auto& request) { EXPECT_EQ(request.ProfileToken, "channels.1"); };
    Send("tr2", "GetStreamUri",
         "<tr2:Protocol>RtspUnicast</tr2:Protocol><tr2:ProfileToken>channels.1</tr2:ProfileToken>");
}

TEST_F(Media2Requests, OptionsReadBothTokens) {
    service.onGetVideoSourceConfigurationOptions = [](auto& request) {
        ASSERT_NE(request.ConfigurationToken, nullptr);
        EXPECT_EQ(*request.ConfigurationToken, "a");
        ASSERT_NE(request.ProfileToken, nullptr);
        EXPECT_EQ(*request.ProfileToken, "b");
    };
    Send("tr2", "GetVideoSourceConfigurationOptions",
         "<tr2:ConfigurationToken>a</tr2:ConfigurationToken><tr2:ProfileToken>b</tr2:ProfileToken>");
}

TEST_F(EventsRequests, CreatePullPointSubscriptionKeepsTheTextOfEveryFilter) {
    service.onCreatePullPointSubscription = [](auto& request) {
        ASSERT_NE(request.Filter, nullptr);
        ASSERT_THAT(request.Filter->__any, SizeIs(2));
        EXPECT_STREQ(request.Filter->__any[0].name, "wsnt:TopicExpression");
        EXPECT_STREQ(soap_elt_get_text(&request.Filter->__any[0]), "tns1:RuleEngine/Grün|tns1:大门");
        EXPECT_STREQ(soap_elt_get_text(&request.Filter->__any[1]), "boolean(//tt:SimpleItem)");
        ASSERT_NE(request.InitialTerminationTime, nullptr);
        EXPECT_EQ(*request.InitialTerminationTime, "PT10S");
    };
    Send(
        "tev", "CreatePullPointSubscription",
        R"(<tev:Filter><wsnt:TopicExpression xmlns:tns1="http://www.onvif.org/ver10/topics" Dialect="d">tns1:RuleEngine/Grün|tns1:大门</wsnt:TopicExpression>
            <wsnt:MessageContent Dialect="d">boolean(//tt:SimpleItem)</wsnt:MessageContent></tev:Filter>
            <tev:InitialTerminationTime>PT10S</tev:InitialTerminationTime>
            <tev:SubscriptionPolicy><tev:Any/></tev:SubscriptionPolicy>)");
}

TEST_F(EventsRequests, CreatePullPointSubscriptionDistinguishesMissingFromEmptyTime) {
    service.onCreatePullPointSubscription = [](auto& request) {
        EXPECT_EQ(request.Filter, nullptr);
        EXPECT_EQ(request.InitialTerminationTime, nullptr);
    };
    Send("tev", "CreatePullPointSubscription", "");
    service.onCreatePullPointSubscription = [](auto& request) {
        ASSERT_NE(request.InitialTerminationTime, nullptr);
        EXPECT_EQ(*request.InitialTerminationTime, "");
    };
    Send("tev", "CreatePullPointSubscription", "<tev:InitialTerminationTime></tev:InitialTerminationTime>");
    service.onCreatePullPointSubscription = [](auto& request) { EXPECT_EQ(request.InitialTerminationTime, nullptr); };
    Send("tev", "CreatePullPointSubscription",
         R"(<tev:InitialTerminationTime xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance" xsi:nil="true"/>)");
}

TEST_F(EventsRequests, PullMessagesReadsTimeoutAndLimit) {
    service.onPullMessages = [](auto& request) {
        EXPECT_EQ(request.Timeout, "PT5S");
        EXPECT_EQ(request.MessageLimit, -3);
    };
    Send("tev", "PullMessages", "<tev:Timeout>PT5S</tev:Timeout><tev:MessageLimit>-3</tev:MessageLimit>");
}

TEST_F(EventsRequests, PullMessagesWithAnOverflowingLimitIsAnError) {
    auto const outcome =
        Serve(context.get(), service,
              Envelope("<tev:PullMessages><tev:MessageLimit>99999999999</tev:MessageLimit></tev:PullMessages>"));
    EXPECT_EQ(outcome.status, SOAP_TYPE);
    EXPECT_EQ(service.called, "");
}

TEST_F(EventsRequests, RenewReadsTheTime) {
    service.onRenew = [](auto& request) {
        ASSERT_NE(request.TerminationTime, nullptr);
        EXPECT_EQ(*request.TerminationTime, "2030-01-31T12:00:00Z");
    };
    Send("wsnt", "Renew", "<wsnt:TerminationTime>2030-01-31T12:00:00Z</wsnt:TerminationTime>");
}

} // namespace
} // namespace zarn::bindings
