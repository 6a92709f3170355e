#include "exchange.h"
#include "recording_services.h"

#include <gmock/gmock.h>

#include <functional>
#include <string>

namespace zarn::bindings {
namespace {

using testing::ElementsAre;
using testing::SizeIs;

// Each service below shows the request of an operation to the test.
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
    ZARN_SHOW(GetCapabilities, _tds__GetCapabilities, _tds__GetCapabilitiesResponse)
    ZARN_SHOW(SetUser, _tds__SetUser, _tds__SetUserResponse)
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
    ZARN_SHOW(SetMetadataConfiguration, _tr2__SetMetadataConfiguration, tr2__SetConfigurationResponse)
    ZARN_SHOW(SetVideoEncoderConfiguration, _tr2__SetVideoEncoderConfiguration, tr2__SetConfigurationResponse)
};

struct ShowingEvents : RecordingEvents {
    using RecordingEvents::RecordingEvents;
    ZARN_SHOW(CreatePullPointSubscription, _tev__CreatePullPointSubscription, _tev__CreatePullPointSubscriptionResponse)
    ZARN_SHOW(PullMessages, _tev__PullMessages, _tev__PullMessagesResponse)
    ZARN_SHOW(Renew, _wsnt__Renew, _wsnt__RenewResponse)
};

struct ShowingAnalytics : RecordingAnalytics {
    using RecordingAnalytics::RecordingAnalytics;
    ZARN_SHOW(GetAnalyticsModules, _tan__GetAnalyticsModules, _tan__GetAnalyticsModulesResponse)
    ZARN_SHOW(GetSupportedMetadata, _tan__GetSupportedMetadata, _tan__GetSupportedMetadataResponse)
};

#undef ZARN_SHOW

template <class Service>
class Requests : public testing::Test {
protected:
    /// Serves the element with that content and expects that it gets to its operation.
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
using AnalyticsRequests = Requests<ShowingAnalytics>;

TEST_F(DeviceRequests, GetServicesTellsWhetherCapabilitiesAreWanted) {
    bool wanted = false;
    service.onGetServices = [&](auto& request) { wanted = request.IncludeCapability; };
    Send("tds", "GetServices", "<tds:IncludeCapability>true</tds:IncludeCapability>");
    EXPECT_TRUE(wanted);
    Send("tds", "GetServices", "<tds:IncludeCapability>false</tds:IncludeCapability>");
    EXPECT_FALSE(wanted);
}

TEST_F(DeviceRequests, GetCapabilitiesListsCategories) {
    service.onGetCapabilities = [](auto& request) {
        EXPECT_THAT(request.Category, ElementsAre(tt__CapabilityCategory__Media, tt__CapabilityCategory__All));
    };
    Send("tds", "GetCapabilities", "<tds:Category>Media</tds:Category><tds:Category>All</tds:Category>");
}

TEST_F(DeviceRequests, SetUserCarriesTheUser) {
    service.onSetUser = [](auto& request) {
        ASSERT_THAT(request.User, SizeIs(1));
        EXPECT_EQ(request.User[0]->Username, "admin");
        ASSERT_NE(request.User[0]->Password, nullptr);
        EXPECT_EQ(*request.User[0]->Password, "secret");
        EXPECT_EQ(request.User[0]->UserLevel, tt__UserLevel__Operator);
    };
    Send("tds", "SetUser",
         "<tds:User><tt:Username>admin</tt:Username><tt:Password>secret</tt:Password><tt:UserLevel>Operator</"
         "tt:UserLevel>"
         "<tt:Extension><tt:Later>x</tt:Later></tt:Extension></tds:User>");
}

TEST_F(MediaRequests, GetStreamUriReadsTheSetupThatNobodyNeeds) {
    service.onGetStreamUri = [](auto& request) {
        EXPECT_EQ(request.ProfileToken, "channels.1");
        ASSERT_NE(request.StreamSetup, nullptr);
        EXPECT_EQ(request.StreamSetup->Stream, tt__StreamType__RTP_Unicast);
        ASSERT_NE(request.StreamSetup->Transport, nullptr);
        EXPECT_EQ(request.StreamSetup->Transport->Protocol, tt__TransportProtocol__HTTP);
        ASSERT_NE(request.StreamSetup->Transport->Tunnel, nullptr);
        EXPECT_EQ(request.StreamSetup->Transport->Tunnel->Protocol, tt__TransportProtocol__RTSP);
    };
    Send("trt", "GetStreamUri",
         "<trt:StreamSetup><tt:Stream>RTP-Unicast</tt:Stream><tt:Transport><tt:Protocol>HTTP</tt:Protocol>"
         "<tt:Tunnel><tt:Protocol>RTSP</tt:Protocol></tt:Tunnel></tt:Transport></trt:StreamSetup>"
         "<trt:ProfileToken>channels.1</trt:ProfileToken>");
}

TEST_F(MediaRequests, GetStreamUriDoesWithoutASetup) {
    service.onGetStreamUri = [](auto& request) { EXPECT_EQ(request.ProfileToken, "channels.1"); };
    Send("trt", "GetStreamUri", "<trt:ProfileToken>channels.1</trt:ProfileToken>");
}

TEST_F(MediaRequests, GetProfileHasAnEmptyTokenWhenItIsMissing) {
    service.onGetProfile = [](auto& request) { EXPECT_EQ(request.ProfileToken, ""); };
    Send("trt", "GetProfile", "");
}

TEST_F(MediaRequests, GetVideoEncoderConfigurationOptionsTellsTokensApart) {
    service.onGetVideoEncoderConfigurationOptions = [](auto& request) {
        EXPECT_EQ(request.ConfigurationToken, nullptr);
        ASSERT_NE(request.ProfileToken, nullptr);
        EXPECT_EQ(*request.ProfileToken, "channels.1");
    };
    Send("trt", "GetVideoEncoderConfigurationOptions", "<trt:ProfileToken>channels.1</trt:ProfileToken>");
}

TEST_F(Media2Requests, GetProfilesListsTypes) {
    service.onGetProfiles = [](auto& request) {
        ASSERT_NE(request.Token, nullptr);
        EXPECT_EQ(*request.Token, "channels.1");
        EXPECT_THAT(request.Type, ElementsAre("Metadata", "All"));
    };
    Send("tr2", "GetProfiles",
         "<tr2:Token>channels.1</tr2:Token><tr2:Type>Metadata</tr2:Type><tr2:Type>All</tr2:Type>");
}

TEST_F(Media2Requests, GetStreamUriReadsProtocolAndToken) {
    service.onGetStreamUri = [](auto& request) {
        EXPECT_EQ(request.Protocol, "RtspUnicast");
        EXPECT_EQ(request.ProfileToken, "channels.1");
    };
    Send("tr2", "GetStreamUri",
         "<tr2:Protocol>RtspUnicast</tr2:Protocol><tr2:ProfileToken>channels.1</tr2:ProfileToken>");
}

TEST_F(Media2Requests, OptionsAreAskedForByEitherToken) {
    service.onGetVideoSourceConfigurationOptions = [](auto& request) {
        ASSERT_NE(request.ConfigurationToken, nullptr);
        EXPECT_EQ(*request.ConfigurationToken, "a");
        ASSERT_NE(request.ProfileToken, nullptr);
        EXPECT_EQ(*request.ProfileToken, "b");
    };
    Send("tr2", "GetVideoSourceConfigurationOptions",
         "<tr2:ConfigurationToken>a</tr2:ConfigurationToken><tr2:ProfileToken>b</tr2:ProfileToken>");
}

TEST_F(Media2Requests, SetMetadataConfigurationReadsAConfigurationWithEverything) {
    service.onSetMetadataConfiguration = [](auto& request) {
        ASSERT_NE(request.Configuration, nullptr);
        auto const& configuration = *request.Configuration;
        EXPECT_EQ(configuration.token, "channels.1");
        EXPECT_EQ(configuration.Name, "Gate");
        ASSERT_NE(configuration.PTZStatus, nullptr);
        EXPECT_TRUE(configuration.PTZStatus->Position);
        ASSERT_NE(configuration.Events, nullptr);
        ASSERT_NE(configuration.Events->Filter, nullptr);
        ASSERT_THAT(configuration.Events->Filter->__any, SizeIs(1));
        EXPECT_STREQ(configuration.Events->Filter->__any[0].text, "tns1:RuleEngine//.");
        ASSERT_NE(configuration.Analytics, nullptr);
        EXPECT_TRUE(*configuration.Analytics);
        ASSERT_NE(configuration.Multicast, nullptr);
        ASSERT_NE(configuration.Multicast->Address, nullptr);
        EXPECT_EQ(configuration.Multicast->Address->Type, tt__IPType__IPv4);
        EXPECT_EQ(configuration.Multicast->Port, 5000);
        EXPECT_EQ(configuration.SessionTimeout, "PT60S");
        ASSERT_NE(configuration.AnalyticsEngineConfiguration, nullptr);
        ASSERT_THAT(configuration.AnalyticsEngineConfiguration->AnalyticsModule, SizeIs(1));
        auto const& module = *configuration.AnalyticsEngineConfiguration->AnalyticsModule[0];
        EXPECT_EQ(module.Type, "tt:ZARN");
        ASSERT_NE(module.Parameters, nullptr);
        ASSERT_THAT(module.Parameters->SimpleItem, SizeIs(1));
        EXPECT_EQ(module.Parameters->SimpleItem[0].Value, "1");
        ASSERT_THAT(module.Parameters->ElementItem, SizeIs(1));
        EXPECT_STREQ(module.Parameters->ElementItem[0].__any.name, "tt:Polygon");
    };
    Send(
        "tr2", "SetMetadataConfiguration",
        R"(<tr2:Configuration token="channels.1" CompressionType="None"><tt:Name>Gate</tt:Name><tt:UseCount>1</tt:UseCount>
            <tt:PTZStatus><tt:Status>false</tt:Status><tt:Position>true</tt:Position></tt:PTZStatus>
            <tt:Events><tt:Filter><wsnt:TopicExpression Dialect="d">tns1:RuleEngine//.</wsnt:TopicExpression></tt:Filter>
              <tt:SubscriptionPolicy><tt:Any/></tt:SubscriptionPolicy></tt:Events>
            <tt:Analytics>true</tt:Analytics>
            <tt:Multicast><tt:Address><tt:Type>IPv4</tt:Type><tt:IPv4Address>239.0.0.1</tt:IPv4Address></tt:Address>
              <tt:Port>5000</tt:Port><tt:TTL>3</tt:TTL><tt:AutoStart>false</tt:AutoStart></tt:Multicast>
            <tt:SessionTimeout>PT60S</tt:SessionTimeout>
            <tt:AnalyticsEngineConfiguration><tt:AnalyticsModule Name="a" Type="tt:ZARN"><tt:Parameters>
              <tt:SimpleItem Name="x" Value="1"/>
              <tt:ElementItem Name="Field"><tt:Polygon><tt:Point x="0" y="0"/></tt:Polygon></tt:ElementItem>
              </tt:Parameters></tt:AnalyticsModule></tt:AnalyticsEngineConfiguration>
            <tt:Extension><tt:Later a="b">text<tt:Deep/></tt:Later></tt:Extension></tr2:Configuration>)");
}

TEST_F(Media2Requests, SetVideoEncoderConfigurationReadsWhatClientsSetByAttribute) {
    service.onSetVideoEncoderConfiguration = [](auto& request) {
        ASSERT_NE(request.Configuration, nullptr);
        EXPECT_EQ(request.Configuration->Encoding, "H265");
        ASSERT_NE(request.Configuration->GovLength, nullptr);
        EXPECT_EQ(*request.Configuration->GovLength, 30);
        ASSERT_NE(request.Configuration->Resolution, nullptr);
        EXPECT_EQ(request.Configuration->Resolution->Height, 1080);
        ASSERT_NE(request.Configuration->RateControl, nullptr);
        EXPECT_FLOAT_EQ(request.Configuration->RateControl->FrameRateLimit, 12.5F);
    };
    Send("tr2", "SetVideoEncoderConfiguration",
         R"(<tr2:Configuration token="channels.1" GovLength="30" Profile="Main"><tt:Name>Gate</tt:Name>
            <tt:UseCount>1</tt:UseCount><tt:Encoding>H265</tt:Encoding>
            <tt:Resolution><tt:Width>1920</tt:Width><tt:Height>1080</tt:Height></tt:Resolution>
            <tt:RateControl ConstantBitRate="true"><tt:FrameRateLimit>12.5</tt:FrameRateLimit>
            <tt:BitrateLimit>4000</tt:BitrateLimit></tt:RateControl><tt:Quality>1</tt:Quality></tr2:Configuration>)");
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
        EXPECT_NE(request.SubscriptionPolicy, nullptr);
    };
    Send(
        "tev", "CreatePullPointSubscription",
        R"(<tev:Filter><wsnt:TopicExpression xmlns:tns1="http://www.onvif.org/ver10/topics" Dialect="d">tns1:RuleEngine/Grün|tns1:大门</wsnt:TopicExpression>
            <wsnt:MessageContent Dialect="d">boolean(//tt:SimpleItem)</wsnt:MessageContent></tev:Filter>
            <tev:InitialTerminationTime>PT10S</tev:InitialTerminationTime>
            <tev:SubscriptionPolicy><tev:Any/></tev:SubscriptionPolicy>)");
}

TEST_F(EventsRequests, CreatePullPointSubscriptionTellsAMissingTimeFromAnEmptyOne) {
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

TEST_F(EventsRequests, PullMessagesWithALimitThatIsNoIntegerIsAnError) {
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

TEST_F(AnalyticsRequests, GetAnalyticsModulesReadsTheToken) {
    service.onGetAnalyticsModules = [](auto& request) { EXPECT_EQ(request.ConfigurationToken, "channels.1"); };
    Send("tan", "GetAnalyticsModules", "<tan:ConfigurationToken>channels.1</tan:ConfigurationToken>");
}

TEST_F(AnalyticsRequests, GetSupportedMetadataReadsTheType) {
    service.onGetSupportedMetadata = [](auto& request) {
        ASSERT_NE(request.Type, nullptr);
        EXPECT_EQ(*request.Type, "tt:ZARN");
    };
    Send("tan", "GetSupportedMetadata", "<tan:Type>tt:ZARN</tan:Type>");
}

} // namespace
} // namespace zarn::bindings
