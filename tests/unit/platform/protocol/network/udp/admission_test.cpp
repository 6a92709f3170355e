#include <zarn/network/address.h>
#include <zarn/network/interface.h>
#include <zarn/protocol/network/udp/admission.h>

#include <gtest/gtest.h>

#include <vector>

namespace zarn::protocol::network::udp {
namespace {

using boost::asio::ip::make_network_v4;
using zarn::network::Interface;
using zarn::network::address::v4::Make;

constexpr unsigned Lo = 1;
constexpr unsigned Eth = 2;
constexpr unsigned Tun = 3;
constexpr unsigned Bare = 4;

Interface MakeInterface(unsigned index, std::vector<boost::asio::ip::network_v4> networks) {
    Interface interface;
    interface.index = index;
    interface.loopback = index == Lo;
    interface.networks = std::move(networks);
    return interface;
}

std::vector<Interface> const Interfaces{
    MakeInterface(Lo, {make_network_v4("127.0.0.1/8")}),
    MakeInterface(Eth, {make_network_v4("192.168.7.2/24"), make_network_v4("10.1.0.1/16")}),
    MakeInterface(Tun, {make_network_v4("10.9.0.1/32"), make_network_v4("10.9.0.2/32")}),
    MakeInterface(Bare, {}),
};

TEST(IsNearby, AcceptsEveryNetworkOfTheInterface) {
    EXPECT_TRUE(IsNearby(Interfaces, Eth, Make(192, 168, 7, 1)));
    EXPECT_TRUE(IsNearby(Interfaces, Eth, Make(10, 1, 200, 1)));
    EXPECT_FALSE(IsNearby(Interfaces, Eth, Make(192, 168, 8, 1)));
    EXPECT_FALSE(IsNearby(Interfaces, Eth, Make(8, 8, 8, 8)));
    EXPECT_FALSE(IsNearby(Interfaces, Eth, Make(0, 0, 0, 0)));
}

TEST(IsNearby, RefusesASourceOfAnotherInterface) {
    EXPECT_FALSE(IsNearby(Interfaces, Eth, Make(10, 9, 0, 2)));
    EXPECT_FALSE(IsNearby(Interfaces, Eth, Make(127, 0, 0, 1)));
    EXPECT_FALSE(IsNearby(Interfaces, Tun, Make(192, 168, 7, 1)));
}

TEST(IsNearby, AcceptsThePeerOfAPointToPointLink) {
    EXPECT_TRUE(IsNearby(Interfaces, Tun, Make(10, 9, 0, 2)));
    EXPECT_FALSE(IsNearby(Interfaces, Tun, Make(10, 9, 0, 3)));
}

TEST(IsNearby, AcceptsEveryAddressOfThisMachineOnLoopback) {
    EXPECT_TRUE(IsNearby(Interfaces, Lo, Make(127, 3, 2, 1)));
    EXPECT_TRUE(IsNearby(Interfaces, Lo, Make(192, 168, 7, 2)));
    EXPECT_FALSE(IsNearby(Interfaces, Lo, Make(192, 168, 7, 1)));
}

TEST(IsNearby, RefusesAnUnknownInterfaceOrOneWithoutAddress) {
    EXPECT_FALSE(IsNearby(Interfaces, 99, Make(192, 168, 7, 1)));
    EXPECT_FALSE(IsNearby(Interfaces, 0, Make(192, 168, 7, 1)));
    EXPECT_FALSE(IsNearby(Interfaces, Bare, Make(192, 168, 7, 1)));
    EXPECT_FALSE(IsNearby({}, Eth, Make(192, 168, 7, 1)));
}

} // namespace
} // namespace zarn::protocol::network::udp
