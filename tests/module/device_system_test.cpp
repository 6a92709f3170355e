#include "device_fixture.h"
#include "support/network_namespace.h"

#include <zarn/configuration/schema.h>
#include <zarn/network/device.h>
#include <zarn/network/local.h>

#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <ctime>
#include <future>

namespace zarn::test {
namespace {

using testing::Each;

class GetSystemDateAndTime : public DeviceFixture {};

TEST_F(GetSystemDateAndTime, ReportsTheClockInUtcWithoutCredentials) {
    auto const before = std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now());
    auto const reply = AskAnonymously("<tds:GetSystemDateAndTime/>");
    auto const after = std::chrono::system_clock::now();
    auto const number = [&](char const* xpath) { return std::stoi(reply.Text(xpath)); };
    std::tm tm{};
    tm.tm_year = number("//tt:UTCDateTime/tt:Date/tt:Year") - 1900;
    tm.tm_mon = number("//tt:UTCDateTime/tt:Date/tt:Month") - 1;
    tm.tm_mday = number("//tt:UTCDateTime/tt:Date/tt:Day");
    tm.tm_hour = number("//tt:UTCDateTime/tt:Time/tt:Hour");
    tm.tm_min = number("//tt:UTCDateTime/tt:Time/tt:Minute");
    tm.tm_sec = number("//tt:UTCDateTime/tt:Time/tt:Second");
    auto const told = std::chrono::system_clock::from_time_t(timegm(&tm));
    EXPECT_GE(told, before);
    EXPECT_LE(told, after);
}

TEST_F(GetSystemDateAndTime, NamesNtpAsItsSourceAndNoZoneOrLocalTime) {
    auto const reply = AskAnonymously("<tds:GetSystemDateAndTime/>");
    EXPECT_EQ(reply.Text("//tt:DateTimeType"), "NTP");
    EXPECT_EQ(reply.Text("//tt:DaylightSavings"), "false");
    EXPECT_FALSE(reply.Has("//tt:TimeZone"));
    EXPECT_FALSE(reply.Has("//tt:LocalDateTime"));
    EXPECT_FALSE(reply.Has("//tds:SystemDateAndTime/tt:Extension"));
}

class GetHostname : public DeviceFixture {};

TEST_F(GetHostname, ReportsTheHostNameWithoutCredentials) {
    EXPECT_THAT(AskAnonymously("<tds:GetHostname/>"),
                Answers("<tds:GetHostnameResponse><tds:HostnameInformation><tt:FromDHCP>false</tt:FromDHCP><tt:Name>" +
                        network::GetHostname() + "</tt:Name></tds:HostnameInformation></tds:GetHostnameResponse>"));
}

TEST_F(GetHostname, AndTheSerialNumberFollowTheHostNameWhenItChanges) {
    bool const entered = RunOnPrivateMachine([this] {
        for (std::string const name : {"gate-1", "yard.example", "Grün", "大门", ""}) {
            ASSERT_EQ(sethostname(name.data(), name.size()), 0);
            EXPECT_EQ(AskAnonymously("<tds:GetHostname/>").Text("//tt:Name"), name);
            EXPECT_EQ(Ask("<tds:GetDeviceInformation/>").Text("//tds:SerialNumber"), name);
        }
    });
    if (!entered) GTEST_SKIP() << WhyNoNamespace();
}

class GetNetworkInterfaces : public DeviceFixture {};

TEST_F(GetNetworkInterfaces, ListsDevicesWithAnAddressInPlatformOrder) {
    std::vector<std::string> names;
    std::vector<std::string> addresses;
    std::vector<std::string> hardwareAddresses;
    for (auto const& device : network::GetDevices()) {
        if (device->GetIPv4Address().is_unspecified()) continue;
        names.push_back(device->GetName());
        addresses.push_back(device->GetIPv4Address().to_string());
        hardwareAddresses.push_back(device->GetHardwareAddress());
    }
    ASSERT_FALSE(names.empty()) << "this machine has no network address";
    auto const reply = Ask("<tds:GetNetworkInterfaces/>");
    EXPECT_EQ(reply.Texts("//tds:NetworkInterfaces/@token"), names);
    EXPECT_EQ(reply.Texts("//tt:FromDHCP/tt:Address"), addresses);
    EXPECT_EQ(reply.Texts("//tt:Info/tt:HwAddress"), hardwareAddresses);
}

TEST_F(GetNetworkInterfaces, ReportsEveryInterfaceAsConfiguredByDhcpWithPrefixLengthZero) {
    auto const reply = Ask("<tds:GetNetworkInterfaces/>");
    EXPECT_THAT(reply.Texts("//tt:IPv4/tt:Config/tt:DHCP"), Each("true"));
    EXPECT_THAT(reply.Texts("//tt:FromDHCP/tt:PrefixLength"), Each("0"));
    EXPECT_THAT(reply.Texts("//tds:NetworkInterfaces/tt:Enabled"), Each("true"));
    for (auto const* absent : {"//tt:Link", "//tt:IPv6", "//tt:Extension", "//tt:Info/tt:Name", "//tt:Info/tt:MTU",
                               "//tt:Manual", "//tt:LinkLocal"})
        EXPECT_FALSE(reply.Has(absent)) << absent;
}

TEST_F(GetNetworkInterfaces, IsEmptyWithoutAnyAddress) {
    bool const entered = RunOnPrivateMachine(
        [this] { EXPECT_THAT(Ask("<tds:GetNetworkInterfaces/>"), Answers("<tds:GetNetworkInterfacesResponse/>")); });
    if (!entered) GTEST_SKIP() << WhyNoNamespace();
}

class GetNetworkProtocols : public DeviceFixture {};

constexpr char HttpAndRtsp[] = R"(
    <tds:GetNetworkProtocolsResponse>
      <tds:NetworkProtocols><tt:Name>HTTP</tt:Name><tt:Enabled>true</tt:Enabled><tt:Port>8080</tt:Port></tds:NetworkProtocols>
      <tds:NetworkProtocols><tt:Name>RTSP</tt:Name><tt:Enabled>true</tt:Enabled><tt:Port>8554</tt:Port></tds:NetworkProtocols>
    </tds:GetNetworkProtocolsResponse>)";

TEST_F(GetNetworkProtocols, ReportsHttpAndRtspWithTheirPorts) {
    EXPECT_THAT(AskAnonymously("<tds:GetNetworkProtocols/>"), Answers(HttpAndRtsp));
}

TEST_F(GetNetworkProtocols, StillReportsHttpWithTlsOn) {
    Manager().UpdateSSLState(true);
    EXPECT_THAT(AskAnonymously("<tds:GetNetworkProtocols/>"), Answers(HttpAndRtsp));
}

TEST_F(GetNetworkProtocols, ThrowsWhenTheRtspPortIsMissing) {
    root = std::make_shared<configuration::node::Root>();
    EXPECT_THROW(AskAnonymously("<tds:GetNetworkProtocols/>"), std::future_error);
}

TEST_F(GetNetworkProtocols, ThrowsWhenTheRtspPortIsNotAPortNumber) {
    root = std::make_shared<configuration::node::Root>();
    root->Schema({configuration::Schema("settings.rtsp_port", "8554", "a text")});
    EXPECT_THROW(AskAnonymously("<tds:GetNetworkProtocols/>"), std::future_error);
}

class Users : public DeviceFixture {};

TEST_F(Users, AreOnlyTheAdministrator) {
    EXPECT_THAT(Ask("<tds:GetUsers/>"),
                Answers("<tds:GetUsersResponse><tds:User><tt:Username>admin</tt:Username>"
                        "<tt:UserLevel>Administrator</tt:UserLevel></tds:User></tds:GetUsersResponse>"));
}

TEST_F(Users, CannotBeModified) {
    auto const fault = IsFault("Sender", "Cannot modify this user", {"ter:InvalidArgVal", "ter:FixedUser"});
    EXPECT_THAT(Ask("<tds:SetUser><tds:User><tt:Username>admin</tt:Username><tt:Password>new</tt:Password>"
                    "<tt:UserLevel>Administrator</tt:UserLevel></tds:User></tds:SetUser>"),
                fault);
    EXPECT_THAT(Ask("<tds:SetUser/>"), fault);
    EXPECT_THAT(Ask("<tds:SetUser><tds:User><tt:UserLevel>King</tt:UserLevel></tds:User></tds:SetUser>"), fault);
}

} // namespace
} // namespace zarn::test
