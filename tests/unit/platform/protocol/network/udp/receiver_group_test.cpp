#include "inbox.h"
#include "support/machine.h"
#include "support/peer.h"
#include "unreadable_interfaces.h"

#include <zarn/asio/io_context.h>
#include <zarn/logging/capture.h>
#include <zarn/protocol/network/udp/admission.h>
#include <zarn/protocol/network/udp/receiver.h>

#include <boost/asio/io_context.hpp>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <fstream>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>

namespace zarn::protocol::network::udp {
namespace {

using namespace std::chrono_literals;
using test::Machine;
using test::Peer;

constexpr char Group[] = "239.255.255.250";
constexpr unsigned short Port = 3702;

/// Two machines with a cable between them, 10.1.0.1 (the receiver's) and 10.1.0.2, and a receiver for the group.
class GroupTest : public testing::Test {
protected:
    void SetUp() override {
        if (!host.Exists() || !neighbour.Exists()) GTEST_SKIP() << "no network namespace may be made here";
        ASSERT_TRUE(host.Ip("link set lo up"));
    }

    void TearDown() override {
        AllowAnySource(false);
        if (context) context->Stop();
        receiver.reset();
    }

    /// Connects the two machines by interfaces of this name.
    void Connect(std::string const& name, std::string const& address, std::string const& neighbourAddress) {
        ASSERT_TRUE(host.Ip("link add " + name + " type veth peer name " + name + " netns " + neighbour.GetPath()));
        ASSERT_TRUE(neighbour.Ip("address add " + neighbourAddress + " dev " + name));
        ASSERT_TRUE(neighbour.Ip("link set " + name + " up"));
        ASSERT_TRUE(host.Ip("address add " + address + " dev " + name));
        ASSERT_TRUE(host.Ip("link set " + name + " up"));
    }

    void Connect() { Connect("eth0", "10.1.0.1/24", "10.1.0.2/24"); }

    /// Connects them by eth0 and eth1, and waits until the kernel has told all about that: it tells of a link being up
    /// as much as a second late, and what follows is to happen without a change.
    void ConnectTwiceAndSettle() {
        Connect();
        Connect("eth1", "10.2.0.1/24", "10.2.0.2/24");
        for (std::string const name : {"eth0", "eth1"}) {
            auto const deadline = std::chrono::steady_clock::now() + 60s;
            while (!host.Ip("link show " + name + " | grep -q 'state UP'"))
                ASSERT_LT(std::chrono::steady_clock::now(), deadline);
        }
    }

    /// What Start throws; empty when it does not.
    std::string TryToStart() {
        std::string reason;
        host.Run([&] {
            try {
                if (!context) context.emplace(1);
                receiver = std::make_unique<Receiver>(context->Get(), Port, boost::asio::ip::make_address(Group), 65535,
                                                      inbox.MakeCallback());
                receiver->Start();
            } catch (std::runtime_error const& error) {
                reason = error.what();
            }
        });
        return reason;
    }

    void Start() { ASSERT_EQ(TryToStart(), ""); }

    /// Sends to the group from `address` until the receiver hears it.
    bool IsHeard(Machine const& sender, std::string const& address, std::string const& text,
                 std::string const& target = Group, std::chrono::seconds limit = 60s) {
        bool heard = false;
        sender.Run([&] {
            auto const deadline = std::chrono::steady_clock::now() + limit;
            while (!heard && std::chrono::steady_clock::now() < deadline) {
                Peer(address).Send(text, target, Port);
                heard = inbox.WaitFor(text, 20ms);
            }
        });
        return heard;
    }

    /// True once what is sent to the group is not heard any more, while what is sent later by the own machine is.
    bool FallsSilent(Machine const& sender, std::string const& address) {
        for (int i = 0; i < 100; ++i) {
            auto const text = address + " " + std::to_string(i);
            sender.Run([&] { Peer(address).Send(text, Group, Port); });
            if (!IsHeard(host, "127.0.1." + std::to_string(i + 1), "after " + text, "127.0.0.1")) return false;
            if (inbox.Count(text) == 0) return true;
            std::this_thread::sleep_for(150ms); // the receiver takes ten datagrams in a second from one source
        }
        return false;
    }

    /// False when it cannot be set here.
    bool SetLimitOfMemberships(int limit) {
        bool set = false;
        host.Run([&] {
            std::ofstream file("/proc/sys/net/ipv4/igmp_max_memberships");
            set = static_cast<bool>(file << limit << std::flush);
        });
        return set;
    }

    Machine host;
    Machine neighbour;
    test::Inbox inbox;
    std::optional<asio::IoContext> context;
    std::unique_ptr<Receiver> receiver;
};

TEST_F(GroupTest, HearsTheGroupAndUnicastOnEveryInterface) {
    Connect();
    Connect("eth1", "10.2.0.1/24", "10.2.0.2/24");
    Start();
    EXPECT_TRUE(IsHeard(neighbour, "10.1.0.2", "first"));
    EXPECT_TRUE(IsHeard(neighbour, "10.2.0.2", "second"));
    EXPECT_TRUE(IsHeard(neighbour, "10.2.0.2", "unicast", "10.2.0.1"));
    EXPECT_EQ(inbox.GetItems().front().source.address().to_string(), "10.1.0.2");
}

TEST_F(GroupTest, HearsProgramsOnTheSameMachine) {
    Connect();
    Start();
    EXPECT_TRUE(IsHeard(host, "10.1.0.1", "looped back"));
    EXPECT_TRUE(IsHeard(host, "10.1.0.1", "to the own address", "10.1.0.1"));
    EXPECT_TRUE(IsHeard(host, "127.0.0.1", "by loopback", "127.0.0.1"));
}

TEST_F(GroupTest, HearsTheGroupOnLoopbackThatCanMulticast) {
    ASSERT_TRUE(host.Ip("link set lo multicast on"));
    Start();
    EXPECT_TRUE(IsHeard(host, "127.0.0.1", "hello"));
}

TEST_F(GroupTest, DoesNotHearGroupsThatOthersJoin) {
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
    // The first interface goes, and with it what kept the second one out.
    ASSERT_TRUE(host.Ip("link delete eth0"));
    EXPECT_TRUE(IsHeard(neighbour, "10.2.0.2", "in its place"));
}

TEST_F(GroupTest, TriesAgainToJoinWithoutAnyChange) {
    ConnectTwiceAndSettle();
    if (!SetLimitOfMemberships(1)) GTEST_SKIP() << "/proc/sys cannot be written here";
    logging::Capture const capture;
    Start();
    ASSERT_TRUE(capture.Contains("Not listening on eth1 at UDP port 3702 for group 239.255.255.250: No buffer space"));
    ASSERT_TRUE(SetLimitOfMemberships(20));
    EXPECT_TRUE(IsHeard(neighbour, "10.2.0.2", "hello"));
}

class UnreadableGroupTest : public GroupTest, public testing::WithParamInterface<test::Lack> {};

TEST_P(UnreadableGroupTest, ReadsTheInterfacesAgainWithoutAnyChange) {
    ConnectTwiceAndSettle();
    ASSERT_TRUE(host.Ip("address delete 10.2.0.1/24 dev eth1"));
    Start();
    logging::Capture const capture;
    {
        test::UnreadableInterfaces const unreadable(GetParam());
        ASSERT_TRUE(host.Ip("address add 10.2.0.1/24 dev eth1"));
        ASSERT_TRUE(capture.WaitFor("; trying again in 10 seconds", 60s));
    }
    EXPECT_TRUE(IsHeard(neighbour, "10.2.0.2", "hello"));
}

INSTANTIATE_TEST_SUITE_P(Lacks, UnreadableGroupTest, testing::Values(test::Lack::Descriptors, test::Lack::Memory),
                         [](auto const& each) {
                             return each.param == test::Lack::Memory ? "ForWantOfMemory" : "ForWantOfDescriptors";
                         });

TEST_F(GroupTest, HearsAnInterfaceThatAppearsLater) {
    Connect();
    Start();
    Connect("eth1", "10.2.0.1/24", "10.2.0.2/24");
    EXPECT_TRUE(IsHeard(neighbour, "10.2.0.2", "hello"));
    EXPECT_TRUE(IsHeard(neighbour, "10.1.0.2", "still there"));
}

TEST_F(GroupTest, HearsAnInterfaceThatGoesDownAndComesBack) {
    Connect();
    Start();
    ASSERT_TRUE(IsHeard(neighbour, "10.1.0.2", "before"));
    ASSERT_TRUE(host.Ip("link set eth0 down"));
    EXPECT_TRUE(FallsSilent(neighbour, "10.1.0.2"));
    ASSERT_TRUE(host.Ip("link set eth0 up"));
    EXPECT_TRUE(IsHeard(neighbour, "10.1.0.2", "after"));
}

TEST_F(GroupTest, HearsANewInterfaceInThePlaceOfAnOlder) {
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
    EXPECT_TRUE(FallsSilent(neighbour, "10.1.0.2")); // it is a stranger now
}

TEST_F(GroupTest, RefusesSourcesFromElsewhereUnlessAllowed) {
    Connect();
    ASSERT_TRUE(neighbour.Ip("address add 192.0.2.1/24 dev eth0"));
    ASSERT_TRUE(host.Ip("route add 192.0.2.0/24 via 10.1.0.2")); // so that the kernel lets it pass
    Start();
    logging::Capture const capture;
    EXPECT_TRUE(FallsSilent(neighbour, "192.0.2.1"));
    auto const items = inbox.GetItems();
    EXPECT_TRUE(std::ranges::none_of(items, [](auto const& each) { return each.text.starts_with("192.0.2.1"); }));
    EXPECT_TRUE(capture.Contains("Refused a datagram from 192.0.2.1: it comes from no network that is connected"));
    AllowAnySource(true);
    EXPECT_TRUE(IsHeard(neighbour, "192.0.2.1", "hello"));
    AllowAnySource(false);
    EXPECT_TRUE(FallsSilent(neighbour, "192.0.2.1"));
}

TEST_F(GroupTest, BoundsAFloodFromAnySource) {
    Connect();
    ASSERT_TRUE(neighbour.Ip("address add 10.1.0.3/24 dev eth0"));
    Start();
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
