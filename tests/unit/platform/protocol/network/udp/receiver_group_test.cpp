#include "group_test.h"

#include <zarn/logging/capture.h>
#include <zarn/protocol/network/udp/admission.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <string>

namespace zarn::protocol::network::udp {
namespace {

using namespace std::chrono_literals;
using test::Peer;

TEST_F(GroupTest, ReceivesMulticastAndUnicastOnEveryInterface) {
    Connect();
    Connect("eth1", "10.2.0.1/24", "10.2.0.2/24");
    Start();
    EXPECT_TRUE(IsHeard(neighbour, "10.1.0.2", "first"));
    EXPECT_TRUE(IsHeard(neighbour, "10.2.0.2", "second"));
    EXPECT_TRUE(IsHeard(neighbour, "10.2.0.2", "unicast", "10.2.0.1"));
    EXPECT_EQ(inbox.GetItems().front().source.address().to_string(), "10.1.0.2");
}

TEST_F(GroupTest, ReceivesFromTheSameMachine) {
    Connect();
    Start();
    EXPECT_TRUE(IsHeard(host, "10.1.0.1", "looped back"));
    EXPECT_TRUE(IsHeard(host, "10.1.0.1", "to the own address", "10.1.0.1"));
    EXPECT_TRUE(IsHeard(host, "127.0.0.1", "by loopback", "127.0.0.1"));
}

TEST_F(GroupTest, ReceivesMulticastOnLoopbackThatCanMulticast) {
    ASSERT_TRUE(host.Ip("link set lo multicast on"));
    Start();
    EXPECT_TRUE(IsHeard(host, "127.0.0.1", "hello"));
}

TEST_F(GroupTest, DoesNotReceiveGroupsThatOthersJoin) {
    Connect();
    Start();
    host.Run([&] {
        Peer const other("0.0.0.0");
        ASSERT_TRUE(other.Join("239.1.2.3", "10.1.0.1"));
        ASSERT_TRUE(Peer("10.1.0.1").Send("for others", "239.1.2.3", Port));
        ASSERT_TRUE(IsHeard(host, "10.1.0.1", "for us"));
    });
    EXPECT_EQ(inbox.Count("for others"), 0U);
}

TEST_F(GroupTest, FailsToStartWithoutAnInterfaceThatCanMulticast) {
    EXPECT_EQ(TryToStart(),
              "Failed to receive at UDP port 3702 for group 239.255.255.250: no interface that is up has an "
              "IPv4 address and can multicast");
    host.Run([] { EXPECT_TRUE(Peer("0.0.0.0", Port).IsBound()); });
    Connect();
    Start();
    EXPECT_TRUE(IsHeard(neighbour, "10.1.0.2", "hello"));
}

TEST_F(GroupTest, FailsToStartWhileThePortIsTaken) {
    Connect();
    host.Run([&] {
        Peer const holder("0.0.0.0", Port, SO_REUSEADDR);
        EXPECT_EQ(TryToStart(), "Failed to receive at UDP port 3702 for group 239.255.255.250: Address already in use");
    });
    Start();
}

TEST_F(GroupTest, FailsToStartWhenNoInterfaceCanBeJoined) {
    Connect();
    if (!SetLimitOfMemberships(0)) GTEST_SKIP() << "/proc/sys cannot be written here";
    EXPECT_EQ(TryToStart(),
              "Failed to receive at UDP port 3702 for group 239.255.255.250: the group cannot be joined on "
              "eth0: No buffer space available");
    host.Run([] { EXPECT_TRUE(Peer("0.0.0.0", Port).IsBound()); });
}

TEST_F(GroupTest, StartsWhenSomeInterfacesCannotBeJoined) {
    Connect();
    Connect("eth1", "10.2.0.1/24", "10.2.0.2/24");
    if (!SetLimitOfMemberships(1)) GTEST_SKIP() << "/proc/sys cannot be written here";
    logging::Capture const capture;
    Start();
    EXPECT_TRUE(IsHeard(neighbour, "10.1.0.2", "hello"));
    EXPECT_TRUE(capture.Contains("Not listening on eth1 at UDP port 3702 for group 239.255.255.250: No buffer space"));
    // Removing the first interface frees the membership that the second one lacked.
    ASSERT_TRUE(host.Ip("link delete eth0"));
    EXPECT_TRUE(IsHeard(neighbour, "10.2.0.2", "in its place"));
}

TEST_F(GroupTest, RetriesToJoinWithoutANetworkChange) {
    ConnectTwiceAndSettle();
    if (!SetLimitOfMemberships(1)) GTEST_SKIP() << "/proc/sys cannot be written here";
    logging::Capture const capture;
    Start();
    ASSERT_TRUE(capture.Contains("Not listening on eth1 at UDP port 3702 for group 239.255.255.250: No buffer space"));
    ASSERT_TRUE(SetLimitOfMemberships(20));
    EXPECT_TRUE(IsHeard(neighbour, "10.2.0.2", "hello"));
}

TEST_F(GroupTest, ReceivesOnAnInterfaceThatAppearsLater) {
    Connect();
    Start();
    Connect("eth1", "10.2.0.1/24", "10.2.0.2/24");
    EXPECT_TRUE(IsHeard(neighbour, "10.2.0.2", "hello"));
    EXPECT_TRUE(IsHeard(neighbour, "10.1.0.2", "still there"));
}

TEST_F(GroupTest, ReceivesOnAnInterfaceThatGoesDownAndUp) {
    Connect();
    Start();
    ASSERT_TRUE(IsHeard(neighbour, "10.1.0.2", "before"));
    ASSERT_TRUE(host.Ip("link set eth0 down"));
    EXPECT_TRUE(FallsSilent(neighbour, "10.1.0.2"));
    ASSERT_TRUE(host.Ip("link set eth0 up"));
    EXPECT_TRUE(IsHeard(neighbour, "10.1.0.2", "after"));
}

TEST_F(GroupTest, ReceivesOnAReplacedInterface) {
    Connect();
    Start();
    ASSERT_TRUE(IsHeard(neighbour, "10.1.0.2", "before"));
    ASSERT_TRUE(host.Ip("link delete eth0"));
    Connect();
    EXPECT_TRUE(IsHeard(neighbour, "10.1.0.2", "after"));
}

TEST_F(GroupTest, FollowsAChangeOfAddress) {
    Connect();
    Start();
    ASSERT_TRUE(IsHeard(neighbour, "10.1.0.2", "before"));
    ASSERT_TRUE(neighbour.Ip("address add 10.7.0.2/24 dev eth0"));
    ASSERT_TRUE(host.Ip("address add 10.7.0.1/24 dev eth0"));
    ASSERT_TRUE(host.Ip("address delete 10.1.0.1/24 dev eth0"));
    EXPECT_TRUE(IsHeard(neighbour, "10.7.0.2", "after"));
    EXPECT_TRUE(FallsSilent(neighbour, "10.1.0.2")); // no longer in a local network
}

TEST_F(GroupTest, RefusesRemoteSourcesUnlessAllowed) {
    Connect();
    ASSERT_TRUE(neighbour.Ip("address add 192.0.2.1/24 dev eth0"));
    ASSERT_TRUE(host.Ip("route add 192.0.2.0/24 via 10.1.0.2")); // otherwise the kernel drops it
    Start();
    ASSERT_TRUE(IsHeard(neighbour, "10.1.0.2", "before")); // the link may take a moment to come up
    logging::Capture const capture;
    EXPECT_TRUE(FallsSilent(neighbour, "192.0.2.1"));
    auto const items = inbox.GetItems();
    EXPECT_TRUE(std::ranges::none_of(items, [](auto const& each) { return each.text.starts_with("192.0.2.1"); }));
    EXPECT_TRUE(capture.Contains("Refused a datagram from 192.0.2.1: it comes from no network that is connected"));
    anySource = true;
    EXPECT_TRUE(IsHeard(neighbour, "192.0.2.1", "hello"));
    anySource = false;
    EXPECT_TRUE(FallsSilent(neighbour, "192.0.2.1"));
}

TEST_F(GroupTest, BoundsAFloodFromAnySource) {
    Connect();
    ASSERT_TRUE(neighbour.Ip("address add 10.1.0.3/24 dev eth0"));
    Start();
    ASSERT_TRUE(IsHeard(neighbour, "10.1.0.3", "before")); // the link may take a moment to come up
    auto const begin = std::chrono::steady_clock::now();
    neighbour.Run([&] {
        Peer const flooder("10.1.0.2");
        for (int i = 0; i < 200; ++i) ASSERT_TRUE(flooder.Send("flood", Group, Port));
    });
    EXPECT_TRUE(IsHeard(neighbour, "10.1.0.3", "quiet"));
    auto const seconds = std::chrono::ceil<std::chrono::seconds>(std::chrono::steady_clock::now() - begin).count();
    EXPECT_LE(inbox.Count("flood"), 20U + 10U * static_cast<std::size_t>(seconds));
    EXPECT_GE(inbox.Count("flood"), 20U);
}

} // namespace
} // namespace zarn::protocol::network::udp
