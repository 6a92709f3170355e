#include "generated_client_test.h"

#include <gmock/gmock.h>
#include <unistd.h>

#include <array>
#include <string>
#include <vector>

namespace zarn::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr char TwoChannels[] = R"({
  "identity": {"manufacturer": "Zarnsuite", "model": "Würfel", "firmware": "1.2.3", "hardware": "rack",
               "name": "北门", "location": "Halle 3"},
  "settings": {"web_port": 0, "rtsp_port": 0, "onvif": {"enabled": false}},
  "channels": {
    "1": {"name": "Gate", "video": {"codec": "video/x-h264", "width": 1920, "height": 1080, "rate": "10/1"}},
    "2": {"name": "Grüner Hof", "video": {"codec": "video/x-h265", "width": 640, "height": 360, "rate": "30000/1001"}}
  }
})";

std::string GetHostName() {
    std::array<char, 256> name{};
    gethostname(name.data(), name.size() - 1);
    return name.data();
}

class GeneratedClient : public GeneratedClientTest {
protected:
    GeneratedClient() : GeneratedClientTest(TwoChannels) {}
};

TEST_F(GeneratedClient, ReadsTheDeviceInformation) {
    auto const information = Ask(&DeviceBindingProxy::GetDeviceInformation);
    EXPECT_EQ(information.Manufacturer, "Zarnsuite");
    EXPECT_EQ(information.Model, "Würfel");
    EXPECT_EQ(information.FirmwareVersion, "1.2.3");
    EXPECT_EQ(information.SerialNumber, GetHostName());
    EXPECT_EQ(information.HardwareId, "rack");
}

TEST_F(GeneratedClient, FindsTheServicesAndTheirCapabilities) {
    _tds__GetServices request;
    request.IncludeCapability = true;
    auto const base = Advertised("http", host.GetPort()) + "/onvif/";
    std::vector<std::string> addresses;
    std::vector<std::string> elements;
    for (auto const* service : Ask(&DeviceBindingProxy::GetServices, request).Service) {
        addresses.push_back(service->XAddr);
        ASSERT_NE(service->Capabilities, nullptr);
        elements.emplace_back(service->Capabilities->__any.name);
        EXPECT_EQ(service->Capabilities->__any.nstr, service->Namespace);
    }
    EXPECT_THAT(addresses, ElementsAre(base + "events_service", base + "device_service", base + "media_service",
                                       base + "media2_service", base + "analytics_service"));
    EXPECT_THAT(elements, SizeIs(5));
}

TEST_F(GeneratedClient, ReadsTheCapabilities) {
    auto const& capabilities = *Ask(&DeviceBindingProxy::GetCapabilities).Capabilities;
    EXPECT_EQ(capabilities.Media->XAddr, Advertised("http", host.GetPort()) + "/onvif/media_service");
    EXPECT_TRUE(capabilities.Events->WSPullPointSupport);
    EXPECT_TRUE(*capabilities.Media->StreamingCapabilities->RTP_USCORERTSP_USCORETCP);
    ASSERT_THAT(capabilities.Device->System->SupportedVersions, SizeIs(1));
    EXPECT_EQ(capabilities.Device->System->SupportedVersions[0]->Major, 23);
}

TEST_F(GeneratedClient, ReadsTheScopes) {
    std::vector<std::string> scopes;
    for (auto const* scope : Ask(&DeviceBindingProxy::GetScopes).Scopes) scopes.push_back(scope->ScopeItem);
    EXPECT_THAT(scopes, SizeIs(8));
    EXPECT_THAT(scopes, Contains("onvif://www.onvif.org/name/北门"));
    EXPECT_THAT(scopes, Contains("onvif://www.onvif.org/location/Halle 3"));
}

TEST_F(GeneratedClient, ReadsHostNameInterfacesAndUsers) {
    EXPECT_EQ(*Ask(&DeviceBindingProxy::GetHostname).HostnameInformation->Name, GetHostName());
    std::vector<std::string> addresses;
    for (auto const* interface : Ask(&DeviceBindingProxy::GetNetworkInterfaces).NetworkInterfaces)
        addresses.push_back("http://" + interface->IPv4->Config->FromDHCP->Address + ":1");
    EXPECT_THAT(addresses, Contains(Advertised("http", 1)));
    auto const users = Ask(&DeviceBindingProxy::GetUsers).User;
    ASSERT_THAT(users, SizeIs(1));
    EXPECT_EQ(users[0]->Username, "admin");
    EXPECT_EQ(users[0]->UserLevel, tt__UserLevel__Administrator);
    EXPECT_EQ(users[0]->Password, nullptr);
}

TEST_F(GeneratedClient, ReadsProfilesAndSourcesOfMedia) {
    auto const profiles = Ask(&MediaBindingProxy::GetProfiles).Profiles;
    ASSERT_THAT(profiles, SizeIs(2));
    EXPECT_EQ(profiles[0]->token, "channels.1");
    EXPECT_EQ(profiles[1]->Name, "Grüner Hof");
    EXPECT_EQ(profiles[1]->VideoSourceConfiguration->Bounds->width, 640);
    EXPECT_EQ(profiles[1]->VideoEncoderConfiguration->Encoding, tt__VideoEncoding__H264);
    EXPECT_TRUE(*profiles[1]->MetadataConfiguration->Analytics);
    auto const sources = Ask(&MediaBindingProxy::GetVideoSources).VideoSources;
    ASSERT_THAT(sources, SizeIs(2));
    EXPECT_EQ(sources[0]->Framerate, 10.0F);
    EXPECT_EQ(sources[1]->Framerate, 15.0F);
    EXPECT_EQ(sources[1]->Resolution->Height, 360);
}

TEST_F(GeneratedClient, ReadsProfilesOfMedia2) {
    _tr2__GetProfiles request;
    request.Type = {"All"};
    auto const profiles = Ask(&Media2BindingProxy::GetProfiles, request).Profiles;
    ASSERT_THAT(profiles, SizeIs(2));
    EXPECT_EQ(profiles[0]->Name, "Gate");
    EXPECT_TRUE(*profiles[0]->fixed);
    EXPECT_EQ(profiles[0]->Configurations->VideoEncoder->Encoding, "H264");
    EXPECT_EQ(profiles[1]->Configurations->VideoEncoder->Encoding, "H265");
    EXPECT_EQ(profiles[1]->Configurations->VideoSource->SourceToken, "channels.2");
    EXPECT_EQ(profiles[1]->Configurations->Analytics->Name, "Grüner Hof");
}

TEST_F(GeneratedClient, GetsTheSameUrisFromBothMediaServices) {
    auto const stream = Advertised("rtsp", host.GetRtspPort()) + "/channels/2";
    auto const snapshot = Advertised("http", host.GetPort()) + "/snapshot/2/latest.jpeg";
    _trt__GetStreamUri mediaStream;
    mediaStream.ProfileToken = "channels.2";
    EXPECT_EQ(Ask(&MediaBindingProxy::GetStreamUri, mediaStream).MediaUri->Uri, stream);
    _trt__GetSnapshotUri mediaSnapshot;
    mediaSnapshot.ProfileToken = "channels.2";
    EXPECT_EQ(Ask(&MediaBindingProxy::GetSnapshotUri, mediaSnapshot).MediaUri->Uri, snapshot);
    _tr2__GetStreamUri media2Stream;
    media2Stream.ProfileToken = "channels.2";
    EXPECT_EQ(Ask(&Media2BindingProxy::GetStreamUri, media2Stream).Uri, stream);
    _tr2__GetSnapshotUri media2Snapshot;
    media2Snapshot.ProfileToken = "channels.2";
    EXPECT_EQ(Ask(&Media2BindingProxy::GetSnapshotUri, media2Snapshot).Uri, snapshot);
}

TEST_F(GeneratedClient, ReachesOnlyOpenOperationsWithAWrongPassword) {
    GsoapClient stranger("wrong");
    _tds__GetUsersResponse users;
    auto const address = AddressOf(static_cast<DeviceBindingProxy*>(nullptr));
    EXPECT_EQ(stranger.Call(address, &DeviceBindingProxy::GetUsers, {}, users), 401);
    EXPECT_FALSE(stranger.GetRealm().empty());
    EXPECT_EQ(stranger.Call(address, &DeviceBindingProxy::GetUsers, {}, users), 401);
    EXPECT_THAT(users.User, IsEmpty());
    _tds__GetHostnameResponse name;
    EXPECT_EQ(stranger.Call(address, &DeviceBindingProxy::GetHostname, {}, name), SOAP_OK);
}

TEST_F(GeneratedClient, KeepsItsConnectionOverManyCalls) {
    Ask(&DeviceBindingProxy::GetUsers); // logs in; gSOAP closes the connection that received the 401
    auto const before = client.CountConnections();
    for (int i = 0; i < 10; ++i) {
        EXPECT_THAT(Ask(&DeviceBindingProxy::GetUsers).User, SizeIs(1));
        EXPECT_THAT(Ask(&MediaBindingProxy::GetProfiles).Profiles, SizeIs(2));
        EXPECT_THAT(Ask(&Media2BindingProxy::GetProfiles).Profiles, SizeIs(2));
    }
    EXPECT_EQ(client.CountConnections(), before);
}

TEST_F(GeneratedClient, ReadsFaultReasonAndSubcode) {
    _trt__GetProfile request;
    request.ProfileToken = "channels.3";
    _trt__GetProfileResponse response;
    auto const address = AddressOf(static_cast<MediaBindingProxy*>(nullptr));
    EXPECT_EQ(client.Call(address, &MediaBindingProxy::GetProfile, request, response), SOAP_CLI_FAULT);
    EXPECT_STREQ(soap_fault_string(client.GetContext()), "Profile not found");
    EXPECT_STREQ(soap_fault_subcode(client.GetContext()), "ter:InvalidArgVal");
}

} // namespace
} // namespace zarn::test
