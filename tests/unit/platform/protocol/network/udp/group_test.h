#pragma once

#include "inbox.h"
#include "support/eventually.h"
#include "support/machine.h"
#include "support/peer.h"

#include <zarn/asio/io_context.h>
#include <zarn/protocol/network/udp/receiver.h>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <fstream>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>

namespace zarn::protocol::network::udp {

inline constexpr char Group[] = "239.255.255.250";
inline constexpr unsigned short Port = 3702;

/// Two connected machines, 10.1.0.1 (the receiver's) and 10.1.0.2, and a receiver for the group.
class GroupTest : public testing::Test {
protected:
    void SetUp() override {
        if (!host.Exists()) GTEST_SKIP() << host.WhyNot();
        ASSERT_TRUE(host.Ip("link set lo up"));
    }

    void TearDown() override {
        if (context) context->Stop();
        receiver.reset();
    }

    /// Connects the machines by a pair of interfaces with this name.
    void Connect(std::string const& name, std::string const& address, std::string const& neighbourAddress) {
        ASSERT_TRUE(host.Ip("link add " + name + " type veth peer name " + name + " netns " + neighbour.GetPath()));
        ASSERT_TRUE(neighbour.Ip("address add " + neighbourAddress + " dev " + name));
        ASSERT_TRUE(neighbour.Ip("link set " + name + " up"));
        ASSERT_TRUE(host.Ip("address add " + address + " dev " + name));
        ASSERT_TRUE(host.Ip("link set " + name + " up"));
    }

    void Connect() { Connect("eth0", "10.1.0.1/24", "10.1.0.2/24"); }

    /// Connects the machines by eth0 and eth1 and waits for all kernel notifications, which may report a link as up as
    /// much as a second late. Later steps must not be disturbed by such a change.
    void ConnectTwiceAndSettle() {
        Connect();
        Connect("eth1", "10.2.0.1/24", "10.2.0.2/24");
        for (std::string const name : {"eth0", "eth1"}) {
            ASSERT_TRUE(test::Eventually([&] { return host.Ip("link show " + name + " | grep -q 'state UP'"); }));
        }
    }

    /// The error thrown by Start; empty on success.
    std::string TryToStart() {
        std::string reason;
        host.Run([&] {
            try {
                if (!context) context.emplace(1);
                receiver = std::make_unique<Receiver>(context->Get(), Port, boost::asio::ip::make_address(Group), 65535,
                                                      inbox.MakeCallback(), [this] { return anySource.load(); });
                receiver->Start();
            } catch (std::runtime_error const& error) {
                reason = error.what();
            }
        });
        return reason;
    }

    void Start() { ASSERT_EQ(TryToStart(), ""); }

    /// Sends to the group from `address` until the receiver receives it.
    bool IsHeard(test::Machine const& sender, std::string const& address, std::string const& text,
                 std::string const& target = Group, std::chrono::seconds limit = std::chrono::seconds(60)) {
        bool heard = false;
        sender.Run([&] {
            heard = test::Eventually(
                [&] {
                    test::Peer(address).Send(text, target, Port);
                    return inbox.WaitFor(text, std::chrono::milliseconds(20));
                },
                limit);
        });
        return heard;
    }

    /// True once the receiver no longer receives datagrams sent to the group but still receives later ones from its own
    /// machine.
    bool FallsSilent(test::Machine const& sender, std::string const& address) {
        for (int i = 0; i < 100; ++i) {
            auto const text = address + " " + std::to_string(i);
            sender.Run([&] { test::Peer(address).Send(text, Group, Port); });
            if (!IsHeard(host, "127.0.1." + std::to_string(i + 1), "after " + text, "127.0.0.1")) return false;
            if (inbox.Count(text) == 0) return true;
            // The receiver accepts ten datagrams per second from one source.
            std::this_thread::sleep_for(std::chrono::milliseconds(150));
        }
        return false;
    }

    /// False when the limit cannot be set in this environment.
    bool SetLimitOfMemberships(int limit) {
        bool set = false;
        host.Run([&] {
            std::ofstream file("/proc/sys/net/ipv4/igmp_max_memberships");
            set = static_cast<bool>(file << limit << std::flush);
        });
        return set;
    }

    test::Machine host;
    test::Machine neighbour;
    test::Inbox inbox;
    std::atomic<bool> anySource = false;
    std::optional<asio::IoContext> context;
    std::unique_ptr<Receiver> receiver;
};

} // namespace zarn::protocol::network::udp
