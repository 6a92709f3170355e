#include "support/network_namespace.h"

#include <zarn/network/interface.h>

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <string>
#include <vector>

namespace zarn::network {
namespace {

/// The networks of an interface as text, in a namespace configured with these `ip` commands.
std::vector<std::string> ReadNetworks(std::string const& name, std::vector<std::string> const& commands, bool& ran) {
    std::vector<std::string> texts;
    ran = test::RunInNetworkNamespace([&] {
        for (auto const& command : commands) ASSERT_TRUE(test::Ip(command)) << command;
        auto const interfaces = ReadInterfaces();
        auto const found = std::ranges::find(interfaces, name, &Interface::name);
        ASSERT_NE(found, interfaces.end());
        for (auto const& network : found->networks) texts.push_back(network.to_string());
    });
    return texts;
}

using Texts = std::vector<std::string>;

TEST(ReadInterfaces, ReadsEveryNetworkOfAnInterface) {
    bool ran = false;
    auto const networks =
        ReadNetworks("zarn1",
                     {"link add zarn1 type veth peer name zarn2", "address add 10.1.2.3/24 dev zarn1",
                      "address add 10.1.2.4/24 dev zarn1 label zarn1:b", "address add 172.16.0.1/12 dev zarn1"},
                     ran);
    if (!ran) GTEST_SKIP() << test::WhyNoNamespace();
    EXPECT_EQ(networks, (Texts{"10.1.2.3/24", "172.16.0.1/12", "10.1.2.4/24"}));
}

TEST(ReadInterfaces, ReadsThePeerOfAPointToPointLink) {
    if (access("/dev/net/tun", R_OK | W_OK) != 0) GTEST_SKIP() << "cannot open /dev/net/tun (module tun)";
    bool ran = false;
    auto const networks =
        ReadNetworks("zarn1", {"tuntap add zarn1 mode tun", "address add 10.9.0.1 peer 10.9.0.2/32 dev zarn1"}, ran);
    if (!ran) GTEST_SKIP() << test::WhyNoNamespace();
    EXPECT_EQ(networks, (Texts{"10.9.0.1/32", "10.9.0.2/32"}));
}

TEST(ReadInterfaces, ReadsWhichInterfacesCanMulticast) {
    std::vector<Interface> interfaces;
    if (!test::RunInNetworkNamespace([&] {
            ASSERT_TRUE(test::Ip("link add zarn1 type veth peer name zarn2"));
            interfaces = ReadInterfaces();
        })) {
        GTEST_SKIP() << test::WhyNoNamespace();
    }
    ASSERT_EQ(interfaces.size(), 3U);
    EXPECT_FALSE(interfaces[0].multicast); // the loopback device
    EXPECT_TRUE(interfaces[1].multicast);
    EXPECT_TRUE(interfaces[0].networks.empty());
}

} // namespace
} // namespace zarn::network
