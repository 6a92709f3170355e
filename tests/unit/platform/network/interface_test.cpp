#include "support/network_namespace.h"

#include <zarn/network/address.h>
#include <zarn/network/interface.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace zarn::network {
namespace {

using address::v4::Make;

Interface const Loopback{1, "lo", "00:00:00:00:00:00", Make(127, 0, 0, 1), true, true};
Interface const Down{2, "eth0", "02:00:00:00:00:01", Make(10, 0, 0, 1), false, false};
Interface const Bare{3, "eth1", "02:00:00:00:00:02", {}, true, false};
Interface const First{4, "eth2", "02:00:00:00:00:03", Make(10, 0, 0, 3), true, false};
Interface const Second{5, "eth3", "02:00:00:00:00:04", Make(10, 0, 0, 4), true, false};

std::string Choose(std::vector<Interface> const& interfaces) { return ChooseLocalAddress(interfaces).to_string(); }

TEST(ChooseLocalAddress, UsesTheFirstUsableInterface) {
    EXPECT_EQ(Choose({Loopback, Down, Bare, First, Second}), "10.0.0.3");
}

TEST(ChooseLocalAddress, IsLoopbackAsTheLastResort) {
    EXPECT_EQ(Choose({}), "127.0.0.1");
    EXPECT_EQ(Choose({Loopback, Down, Bare}), "127.0.0.1");
}

TEST(ReadInterfaces, ReadsNameHardwareAddressAndFirstAddress) {
    std::vector<Interface> interfaces;
    if (!test::RunInNetworkNamespace([&] {
            ASSERT_TRUE(test::Ip("link set lo up"));
            ASSERT_TRUE(test::Ip("link add zarn1 address 02:00:5e:10:00:0a type veth peer name zarn2"));
            ASSERT_TRUE(test::Ip("address add 10.1.2.3/24 dev zarn1"));
            ASSERT_TRUE(test::Ip("address add 10.1.2.4/24 dev zarn1 label zarn1:b"));
            ASSERT_TRUE(test::Ip("link set zarn1 up"));
            interfaces = ReadInterfaces();
        })) {
        GTEST_SKIP() << test::WhyNoNamespace();
    }
    ASSERT_EQ(interfaces.size(), 3U);
    EXPECT_EQ(interfaces[0].name, "lo");
    EXPECT_TRUE(interfaces[0].loopback);
    EXPECT_TRUE(interfaces[0].up);
    EXPECT_EQ(interfaces[0].hardwareAddress, "00:00:00:00:00:00");
    EXPECT_EQ(interfaces[0].address, Make(127, 0, 0, 1));
    auto const& device = interfaces[interfaces[1].name == "zarn1" ? 1 : 2];
    EXPECT_EQ(device.name, "zarn1");
    EXPECT_FALSE(device.loopback);
    EXPECT_TRUE(device.up);
    EXPECT_EQ(device.hardwareAddress, "02:00:5e:10:00:0a");
    EXPECT_EQ(device.address, Make(10, 1, 2, 3));
}

TEST(ReadInterfaces, FindsTheAddressBehindALabel) {
    std::vector<Interface> interfaces;
    if (!test::RunInNetworkNamespace([&] {
            ASSERT_TRUE(test::Ip("link add zarn1 type veth peer name zarn2"));
            ASSERT_TRUE(test::Ip("address add 10.1.2.3/24 dev zarn1 label zarn1:b"));
            interfaces = ReadInterfaces();
        })) {
        GTEST_SKIP() << test::WhyNoNamespace();
    }
    auto const found = std::ranges::find(interfaces, std::string("zarn1"), &Interface::name);
    ASSERT_NE(found, interfaces.end());
    EXPECT_EQ(found->address, Make(10, 1, 2, 3));
}

TEST(ReadInterfaces, OrdersInterfacesByIndex) {
    auto const interfaces = ReadInterfaces();
    EXPECT_TRUE(std::ranges::is_sorted(interfaces, {}, &Interface::index));
}

TEST(ReadInterfaces, ReadsInterfacesWithoutAnAddress) {
    std::vector<Interface> interfaces;
    if (!test::RunInNetworkNamespace([&] { interfaces = ReadInterfaces(); })) {
        GTEST_SKIP() << test::WhyNoNamespace();
    }
    ASSERT_EQ(interfaces.size(), 1U);
    EXPECT_EQ(interfaces[0].name, "lo");
    EXPECT_FALSE(interfaces[0].up);
    EXPECT_TRUE(interfaces[0].address.is_unspecified());
}

} // namespace
} // namespace zarn::network
