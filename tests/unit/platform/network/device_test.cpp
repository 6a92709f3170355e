#include "support/network_namespace.h"

#include <zarn/network/address.h>
#include <zarn/network/device.h>
#include <zarn/network/interface.h>

#include <gtest/gtest.h>

namespace zarn::network {
namespace {

TEST(GetDevices, ReturnsOneForEachInterfaceInOrder) {
    auto const interfaces = ReadInterfaces();
    auto const devices = GetDevices();
    ASSERT_EQ(devices.size(), interfaces.size());
    for (std::size_t index = 0; index < devices.size(); ++index) {
        EXPECT_EQ(devices[index]->GetName(), interfaces[index].name);
        EXPECT_EQ(devices[index]->GetHardwareAddress(), interfaces[index].hardwareAddress);
        EXPECT_EQ(devices[index]->GetIPv4Address(), interfaces[index].address);
    }
}

TEST(GetDevices, HasNoAddressForADeviceWithoutOne) {
    std::vector<std::shared_ptr<Device>> devices;
    if (!test::RunInNetworkNamespace([&] { devices = GetDevices(); })) GTEST_SKIP() << test::WhyNoNamespace();
    ASSERT_EQ(devices.size(), 1U);
    EXPECT_EQ(devices[0]->GetName(), "lo");
    EXPECT_EQ(devices[0]->GetIPv4Address(), address::v4::Make(0, 0, 0, 0));
}

} // namespace
} // namespace zarn::network
