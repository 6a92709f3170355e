#include "device_fixture.h"

#include <zarn/network/device.h>
#include <zarn/network/local.h>

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace zarn::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

class GetDeviceInformation : public DeviceFixture {};

TEST_F(GetDeviceInformation, ReportsTheIdentityWithTheHostNameAsSerialNumber) {
    EXPECT_THAT(Ask("<tds:GetDeviceInformation/>"),
                Answers("<tds:GetDeviceInformationResponse><tds:Manufacturer>Zarnsuite</tds:Manufacturer>"
                        "<tds:Model>Analytics Server</tds:Model><tds:FirmwareVersion>1.2.3</tds:FirmwareVersion>"
                        "<tds:SerialNumber>" +
                        network::GetHostname() +
                        "</tds:SerialNumber><tds:HardwareId>rack</tds:HardwareId>"
                        "</tds:GetDeviceInformationResponse>"));
}

TEST_F(GetDeviceInformation, LeavesEmptyValuesEmpty) {
    identity = utilities::name::Config();
    auto const reply = Ask("<tds:GetDeviceInformation/>");
    EXPECT_THAT(reply.Texts("//tds:GetDeviceInformationResponse/*"),
                ElementsAre("", "", "", network::GetHostname(), ""));
}

TEST_F(GetDeviceInformation, PassesTextInAnyLanguageUnchanged) {
    utilities::name::Config::Product product;
    product.manufacturer = "Müller & Söhne <GmbH>";
    product.model = "摄像机 \"一\"";
    identity = utilities::name::Config(product);
    auto const reply = Ask("<tds:GetDeviceInformation/>");
    EXPECT_EQ(reply.Text("//tds:Manufacturer"), "Müller & Söhne <GmbH>");
    EXPECT_EQ(reply.Text("//tds:Model"), "摄像机 \"一\"");
}

class GetServices : public DeviceFixture {
protected:
    Reply AskFor(bool capabilities) {
        return AskAnonymously("<tds:GetServices><tds:IncludeCapability>" +
                              std::string(capabilities ? "true" : "false") +
                              "</tds:IncludeCapability></tds:GetServices>");
    }
};

TEST_F(GetServices, ListsTheFiveServicesInOrderWithTheirXAddrs) {
    auto const reply = AskFor(false);
    ASSERT_EQ(reply.status, 200);
    EXPECT_THAT(reply.Texts("//tds:Service/tds:Namespace"),
                ElementsAre("http://www.onvif.org/ver10/events/wsdl", "http://www.onvif.org/ver10/device/wsdl",
                            "http://www.onvif.org/ver10/media/wsdl", "http://www.onvif.org/ver20/media/wsdl",
                            "http://www.onvif.org/ver20/analytics/wsdl"));
    auto const base = "http://" + network::GetLocalIPAddress().to_string() + ":8080/onvif";
    EXPECT_THAT(reply.Texts("//tds:Service/tds:XAddr"),
                ElementsAre(base + "/events_service", base + "/device_service", base + "/media_service",
                            base + "/media2_service", base + "/analytics_service"));
}

TEST_F(GetServices, ReportsVersionOnePointTwoForEveryService) {
    auto const reply = AskFor(false);
    EXPECT_THAT(reply.Texts("//tds:Service/tds:Version/tt:Major"), ElementsAre("1", "1", "1", "1", "1"));
    EXPECT_THAT(reply.Texts("//tds:Service/tds:Version/tt:Minor"), ElementsAre("2", "2", "2", "2", "2"));
}

TEST_F(GetServices, OmitsCapabilitiesUnlessRequested) {
    EXPECT_FALSE(AskFor(false).Has("//tds:Service/tds:Capabilities"));
}

TEST_F(GetServices, IncludesTheCapabilitiesOfEachServiceOnRequest) {
    auto const reply = AskFor(true);
    EXPECT_THAT(reply.Select("//tds:Service/tds:Capabilities/*"), SizeIs(5));
    for (auto const* path :
         {"//tds:Service[1]/tds:Capabilities/tev:Capabilities", "//tds:Service[2]/tds:Capabilities/tds:Capabilities",
          "//tds:Service[3]/tds:Capabilities/trt:Capabilities", "//tds:Service[4]/tds:Capabilities/tr2:Capabilities",
          "//tds:Service[5]/tds:Capabilities/tan:Capabilities"})
        EXPECT_TRUE(reply.Has(path)) << path;
}

/// The child elements of the XPath's matches and their attributes; their order is irrelevant.
std::multiset<std::string> Content(Reply const& reply, std::string const& xpath) {
    std::multiset<std::string> content;
    for (auto const& element : reply.Select((xpath + "/descendant-or-self::*").c_str())) {
        content.insert(element.node().name());
        for (auto const& attribute : element.node().attributes())
            content.insert(element.node().name() + std::string("@") + attribute.name() + "=" + attribute.value());
    }
    return content;
}

TEST_F(GetServices, ReportsTheSameCapabilitiesAsGetServiceCapabilities) {
    auto const services = AskFor(true);
    for (std::string const prefix : {"tev", "tds", "trt", "tr2", "tan"}) {
        auto const own = AskAnonymously("<" + prefix + ":GetServiceCapabilities/>");
        EXPECT_EQ(Content(services, "//tds:Service/tds:Capabilities/" + prefix + ":Capabilities"),
                  Content(own, "//" + prefix + ":GetServiceCapabilitiesResponse/*"));
    }
}

TEST_F(GetServices, ReportsHttpsXAddrsWithTheNewPortWhileTlsIsOn) {
    Manager().UpdateServerPort(8443);
    Manager().UpdateSSLState(true);
    EXPECT_THAT(
        AskFor(false).Texts("//tds:Service/tds:XAddr"),
        testing::Each(testing::StartsWith("https://" + network::GetLocalIPAddress().to_string() + ":8443/onvif/")));
}

class GetCapabilities : public DeviceFixture {};

constexpr char AllCapabilities[] = R"(
    <tds:GetCapabilitiesResponse><tds:Capabilities>
      <tt:Device>
        <tt:XAddr>http://@ADDRESS@:8080/onvif/device_service</tt:XAddr>
        <tt:System>
          <tt:DiscoveryResolve>false</tt:DiscoveryResolve><tt:DiscoveryBye>false</tt:DiscoveryBye>
          <tt:RemoteDiscovery>false</tt:RemoteDiscovery><tt:SystemBackup>false</tt:SystemBackup>
          <tt:SystemLogging>false</tt:SystemLogging><tt:FirmwareUpgrade>false</tt:FirmwareUpgrade>
          <tt:SupportedVersions><tt:Major>23</tt:Major><tt:Minor>12</tt:Minor></tt:SupportedVersions>
        </tt:System>
      </tt:Device>
      <tt:Events>
        <tt:XAddr>http://@ADDRESS@:8080/onvif/events_service</tt:XAddr>
        <tt:WSSubscriptionPolicySupport>false</tt:WSSubscriptionPolicySupport>
        <tt:WSPullPointSupport>true</tt:WSPullPointSupport>
        <tt:WSPausableSubscriptionManagerInterfaceSupport>false</tt:WSPausableSubscriptionManagerInterfaceSupport>
      </tt:Events>
      <tt:Media>
        <tt:XAddr>http://@ADDRESS@:8080/onvif/media_service</tt:XAddr>
        <tt:StreamingCapabilities><tt:RTP_RTSP_TCP>true</tt:RTP_RTSP_TCP></tt:StreamingCapabilities>
      </tt:Media>
    </tds:Capabilities></tds:GetCapabilitiesResponse>)";

TEST_F(GetCapabilities, ReportsDeviceEventsAndMediaWithoutCredentials) {
    EXPECT_THAT(AskAnonymously("<tds:GetCapabilities/>"), Answers(AllCapabilities));
}

TEST_F(GetCapabilities, IgnoresTheCategory) {
    for (std::string const category :
         {"<tds:Category>Media</tds:Category>", "<tds:Category>PTZ</tds:Category><tds:Category>All</tds:Category>",
          "<tds:Category>Doors</tds:Category>", "<tds:Category/>", "<tds:Category> media </tds:Category>",
          "<tds:Category><tt:Media>1</tt:Media></tds:Category>"})
        EXPECT_THAT(AskAnonymously("<tds:GetCapabilities>" + category + "</tds:GetCapabilities>"),
                    Answers(AllCapabilities))
            << category;
}

class GetScopes : public DeviceFixture {};

TEST_F(GetScopes, ListsEightFixedScopesWithTheIdentityAppendedRaw) {
    auto const reply = AskAnonymously("<tds:GetScopes/>");
    ASSERT_EQ(reply.status, 200);
    EXPECT_THAT(reply.Texts("//tds:Scopes/tt:ScopeItem"),
                ElementsAre("onvif://www.onvif.org/Profile/Streaming", "onvif://www.onvif.org/Profile/M",
                            "onvif://www.onvif.org/type/video_encoder", "onvif://www.onvif.org/type/audio_encoder",
                            "onvif://www.onvif.org/hardware/rack", "onvif://www.onvif.org/manufacturer/Zarnsuite",
                            "onvif://www.onvif.org/location/Hall 3", "onvif://www.onvif.org/name/North gate"));
    EXPECT_THAT(reply.Texts("//tds:Scopes/tt:ScopeDef"), testing::AllOf(SizeIs(8), testing::Each("Fixed")));
}

TEST_F(GetScopes, LeavesTheBarePrefixForAnEmptyValue) {
    identity = utilities::name::Config();
    EXPECT_THAT(AskAnonymously("<tds:GetScopes/>").Texts("//tds:Scopes[position()>4]/tt:ScopeItem"),
                ElementsAre("onvif://www.onvif.org/hardware/", "onvif://www.onvif.org/manufacturer/",
                            "onvif://www.onvif.org/location/", "onvif://www.onvif.org/name/"));
}

class DeviceServiceCapabilities : public DeviceFixture {};

TEST_F(DeviceServiceCapabilities, HoldOnlyTheSecurityElementWithDigestAsTheOnlyMechanism) {
    EXPECT_THAT(AskAnonymously("<tds:GetServiceCapabilities/>"), Answers(R"(
        <tds:GetServiceCapabilitiesResponse><tds:Capabilities>
          <tds:Security TLS1.0="false" TLS1.1="false" TLS1.2="false" OnboardKeyGeneration="false"
                        AccessPolicyConfig="false" DefaultAccessPolicy="false" Dot1X="false"
                        RemoteUserHandling="false" X.509Token="false" SAMLToken="false" KerberosToken="false"
                        UsernameToken="false" HttpDigest="true"/>
        </tds:Capabilities></tds:GetServiceCapabilitiesResponse>)"));
}

} // namespace
} // namespace zarn::test
