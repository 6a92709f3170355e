#include "support/failing_nothrow_new.h"

#include <service/onvif/device.h>
#include <service/onvif/soap_context.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <ctime>
#include <memory>
#include <string>
#include <vector>

namespace zarn::service::onvif {
namespace {

using namespace std::chrono_literals;
using boost::asio::ip::make_address_v4;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pointee;
using testing::SizeIs;

/// The reported date and time for a point in time: year, month, day, hour, minute, second.
std::vector<int> Told(std::chrono::sys_seconds moment) {
    auto const context = MakeSoapContext();
    auto const* told = MakeSystemDateTime(context.get(), moment)->UTCDateTime;
    return {told->Date->Year, told->Date->Month,  told->Date->Day,
            told->Time->Hour, told->Time->Minute, told->Time->Second};
}

TEST(MakeSystemDateTime, UsesUtcInAnyTimeZoneOfTheHost) {
    setenv("TZ", "NZST-12", 1);
    tzset();
    EXPECT_THAT(Told(std::chrono::sys_days(2025y / 12 / 31) + 23h + 59min + 59s),
                ElementsAre(2025, 12, 31, 23, 59, 59));
}

TEST(MakeSystemDateTime, SupportsLeapDaysAndTheYear2038) {
    EXPECT_THAT(Told(std::chrono::sys_days(2028y / 2 / 29)), ElementsAre(2028, 2, 29, 0, 0, 0));
    EXPECT_THAT(Told(std::chrono::sys_days(2038y / 1 / 19) + 3h + 14min + 8s), ElementsAre(2038, 1, 19, 3, 14, 8));
}

TEST(MakeSystemDateTime, ContainsOnlyNtpAndUtc) {
    auto const context = MakeSoapContext();
    auto const& made = *MakeSystemDateTime(context.get(), std::chrono::sys_days(2025y / 7 / 1));
    EXPECT_EQ(made.DateTimeType, tt__SetDateTimeType__NTP);
    EXPECT_FALSE(made.DaylightSavings);
}

class FakeDevice : public network::Device {
public:
    FakeDevice(std::string name, std::string hardwareAddress, char const* address)
        : name(std::move(name)), hardwareAddress(std::move(hardwareAddress)), address(make_address_v4(address)) {}

    std::string GetName() const override { return name; }

    std::string GetHardwareAddress() const override { return hardwareAddress; }

    boost::asio::ip::address_v4 GetIPv4Address() const override { return address; }

private:
    std::string name;
    std::string hardwareAddress;
    boost::asio::ip::address_v4 address;
};

class NetworkInterfaces : public testing::Test {
protected:
    void Add(std::string name, std::string hardwareAddress, char const* address) {
        devices.push_back(std::make_shared<FakeDevice>(std::move(name), std::move(hardwareAddress), address));
    }

    std::vector<tt__NetworkInterface*> Made() { return MakeNetworkInterfaces(context.get(), devices); }

    std::vector<std::string> Tokens() {
        std::vector<std::string> tokens;
        for (auto const* made : Made()) tokens.push_back(made->token);
        return tokens;
    }

    std::shared_ptr<soap> context = MakeSoapContext();
    std::vector<std::shared_ptr<network::Device>> devices;
};

TEST_F(NetworkInterfaces, AreEmptyWithoutDevices) { EXPECT_THAT(Made(), IsEmpty()); }

TEST_F(NetworkInterfaces, AreEmptyWhenNoDeviceHasAnAddress) {
    Add("lo", "00:00:00:00:00:00", "0.0.0.0");
    EXPECT_THAT(Made(), IsEmpty());
    Add("eth0", "aa:bb:cc:dd:ee:ff", "0.0.0.0");
    EXPECT_THAT(Made(), IsEmpty());
}

TEST_F(NetworkInterfaces, ListDevicesWithAnAddressInOrder) {
    Add("wlan0", "", "10.0.0.2");
    Add("tun0", "", "0.0.0.0");
    Add("lo", "", "127.0.0.1");
    Add("eth0", "", "0.0.0.1");
    EXPECT_THAT(Tokens(), ElementsAre("wlan0", "lo", "eth0"));
}

TEST_F(NetworkInterfaces, ListDevicesOfTheSameNameSeparately) {
    Add("eth0", "", "10.0.0.2");
    Add("eth0", "", "10.0.0.2");
    EXPECT_THAT(Tokens(), ElementsAre("eth0", "eth0"));
}

TEST_F(NetworkInterfaces, ReportNameAndAddressesUnchangedAndTheRestAsConstants) {
    Add("eth0.7@é", "aa:bb:cc:dd:ee:ff", "192.168.1.254");
    Add("ppp0", "", "255.255.255.255");
    auto const made = Made();
    ASSERT_THAT(made, SizeIs(2));
    EXPECT_EQ(made[0]->token, "eth0.7@é");
    EXPECT_EQ(made[0]->Info->HwAddress, "aa:bb:cc:dd:ee:ff");
    EXPECT_EQ(made[0]->IPv4->Config->FromDHCP->Address, "192.168.1.254");
    EXPECT_EQ(made[1]->Info->HwAddress, "");
    EXPECT_EQ(made[1]->IPv4->Config->FromDHCP->Address, "255.255.255.255");
    for (auto const* interface : made) {
        EXPECT_TRUE(interface->Enabled);
        EXPECT_EQ(interface->Info->Name, nullptr);
        EXPECT_EQ(interface->Info->MTU, nullptr);
        EXPECT_TRUE(interface->IPv4->Enabled);
        EXPECT_TRUE(interface->IPv4->Config->DHCP);
        EXPECT_EQ(interface->IPv4->Config->FromDHCP->PrefixLength, 0);
    }
}

TEST_F(NetworkInterfaces, AreOmittedOrIncompleteWithoutMemory) {
    Add("eth0", "", "10.0.0.2");
    {
        test::FailingNothrowNew const failing(0);
        EXPECT_THAT(Made(), IsEmpty());
    }
    test::FailingNothrowNew const failing(1);
    EXPECT_THAT(Made(), ElementsAre(Pointee(testing::Field(&tt__NetworkInterface::Info, nullptr))));
}

TEST(GetNetworkProtocols, AddsHttpBeforeThrowingForAMissingRtspPort) {
    auto const context = MakeSoapContext();
    DeviceService device(context.get(), URIBase(443, true), nullptr, {}, std::make_shared<configuration::node::Root>());
    _tds__GetNetworkProtocolsResponse response;
    EXPECT_THROW(device.GetNetworkProtocols(nullptr, response), object::BadCast);
    ASSERT_THAT(response.NetworkProtocols, SizeIs(1));
    EXPECT_EQ(response.NetworkProtocols[0]->Name, tt__NetworkProtocolType__HTTP);
    EXPECT_THAT(response.NetworkProtocols[0]->Port, ElementsAre(443));
}

} // namespace
} // namespace zarn::service::onvif
