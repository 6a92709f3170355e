#include "device_fixture.h"

#include <service/onvif/device.h>
#include <service/onvif/soap_context.h>
#include <zarn/configuration/schema.h>
#include <zarn/network/device.h>
#include <zarn/network/local.h>

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <ctime>
#include <future>

namespace zarn::test {
namespace {

using namespace std::chrono_literals;
using testing::Each;
using testing::ElementsAre;

class GetSystemDateAndTime : public DeviceFixture {};

TEST_F(GetSystemDateAndTime, TellsTheClockInUtcWithoutCredentials) {
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

/// The date and time that are told for a moment, as year, month, day, hour, minute, second.
std::vector<int> Told(std::chrono::sys_seconds moment) {
    auto const context = service::onvif::MakeSoapContext();
    auto const* told = service::onvif::MakeSystemDateTime(context.get(), moment)->UTCDateTime;
    return {told->Date->Year, told->Date->Month,  told->Date->Day,
            told->Time->Hour, told->Time->Minute, told->Time->Second};
}

TEST(MakeSystemDateTime, TellsTheLastSecondOfAYearInUtcWhateverTheTimeZoneOfTheHost) {
    setenv("TZ", "NZST-12", 1);
    tzset();
    EXPECT_THAT(Told(std::chrono::sys_days(2025y / 12 / 31) + 23h + 59min + 59s),
                ElementsAre(2025, 12, 31, 23, 59, 59));
}

TEST(MakeSystemDateTime, KnowsLeapDaysAndTheYear2038) {
    EXPECT_THAT(Told(std::chrono::sys_days(2028y / 2 / 29)), ElementsAre(2028, 2, 29, 0, 0, 0));
    EXPECT_THAT(Told(std::chrono::sys_days(2038y / 1 / 19) + 3h + 14min + 8s), ElementsAre(2038, 1, 19, 3, 14, 8));
}

class GetHostname : public DeviceFixture {};

TEST_F(GetHostname, TellsTheHostNameWithoutCredentials) {
    EXPECT_THAT(AskAnonymously("<tds:GetHostname/>"),
                Answers("<tds:GetHostnameResponse><tds:HostnameInformation><tt:FromDHCP>false</tt:FromDHCP><tt:Name>" +
                        network::GetHostname() + "</tt:Name></tds:HostnameInformation></tds:GetHostnameResponse>"));
}

class GetNetworkInterfaces : public DeviceFixture {};

TEST_F(GetNetworkInterfaces, ListsTheDevicesThatHaveAnAddressInTheOrderOfThePlatform) {
    std::vector<std::string> names;
    std::vector<std::string> addresses;
    std::vector<std::string> hardwareAddresses;
    for (auto const& device : network::GetDevices()) {
        if (device->GetIPv4Address().is_unspecified()) continue;
        names.push_back(device->GetName());
        addresses.push_back(device->GetIPv4Address().to_string());
        hardwareAddresses.push_back(device->GetHardwareAddress());
    }
    ASSERT_FALSE(names.empty()) << "this machine has no address at all";
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

class GetNetworkProtocols : public DeviceFixture {};

constexpr char HttpAndRtsp[] = R"(
    <tds:GetNetworkProtocolsResponse>
      <tds:NetworkProtocols><tt:Name>HTTP</tt:Name><tt:Enabled>true</tt:Enabled><tt:Port>8080</tt:Port></tds:NetworkProtocols>
      <tds:NetworkProtocols><tt:Name>RTSP</tt:Name><tt:Enabled>true</tt:Enabled><tt:Port>8554</tt:Port></tds:NetworkProtocols>
    </tds:GetNetworkProtocolsResponse>)";

TEST_F(GetNetworkProtocols, TellsHttpOnTheWebPortAndRtspOnItsConfiguredPort) {
    EXPECT_THAT(AskAnonymously("<tds:GetNetworkProtocols/>"), Answers(HttpAndRtsp));
}

TEST_F(GetNetworkProtocols, StillSaysHttpWithTlsOn) {
    Manager().UpdateSSLState(true);
    EXPECT_THAT(AskAnonymously("<tds:GetNetworkProtocols/>"), Answers(HttpAndRtsp));
}

TEST_F(GetNetworkProtocols, EndsInAnExceptionWhenTheRtspPortIsMissing) {
    root = std::make_shared<configuration::node::Root>();
    EXPECT_THROW(AskAnonymously("<tds:GetNetworkProtocols/>"), std::future_error);
}

TEST_F(GetNetworkProtocols, EndsInAnExceptionWhenTheRtspPortIsNotAnUnsignedSixteenBitNumber) {
    root = std::make_shared<configuration::node::Root>();
    root->Schema({configuration::Schema("settings.rtsp_port", "8554", "a text")});
    EXPECT_THROW(AskAnonymously("<tds:GetNetworkProtocols/>"), std::future_error);
}

class Users : public DeviceFixture {};

TEST_F(Users, AreTheAdministratorAlone) {
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
}

} // namespace
} // namespace zarn::test
