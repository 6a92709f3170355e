#include "support/network_namespace.h"

#include <zarn/network/local.h>

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <array>
#include <climits>
#include <string>
#include <thread>
#include <vector>

namespace zarn::network {
namespace {

std::string LocalAddress() { return GetLocalIPAddress().to_string(); }

/// The local address in a network with two devices, 10.1.2.3 and 10.9.8.7, after additional commands.
std::string LocalAddressBeside(std::vector<std::string> const& commands) {
    std::string address;
    bool const entered = test::RunInNetworkNamespace([&] {
        ASSERT_TRUE(test::Ip("link set lo up"));
        for (auto const* const command :
             {"link add zarn1 type veth peer name zarn2", "address add 10.1.2.3/24 dev zarn1",
              "address add 10.9.8.7/24 dev zarn2", "link set zarn1 up", "link set zarn2 up"}) {
            ASSERT_TRUE(test::Ip(command));
        }
        for (auto const& command : commands) ASSERT_TRUE(test::Ip(command));
        address = LocalAddress();
    });
    return entered ? address : "no namespace";
}

class LocalAddressTest : public testing::Test {
protected:
    void SetUp() override {
        if (!test::RunInNetworkNamespace([] {})) GTEST_SKIP() << test::WhyNoNamespace();
    }
};

TEST_F(LocalAddressTest, UsesTheDefaultRoute) {
    EXPECT_EQ(LocalAddressBeside({"route add default via 10.9.8.1"}), "10.9.8.7");
    EXPECT_EQ(LocalAddressBeside({"route add default via 10.1.2.1"}), "10.1.2.3");
}

TEST_F(LocalAddressTest, UsesAnInterfaceThatIsUpWithoutADefaultRoute) {
    EXPECT_EQ(LocalAddressBeside({"link set zarn2 down", "link set zarn1 up"}), "10.1.2.3");
    EXPECT_EQ(LocalAddressBeside({"link set zarn1 down", "link set zarn2 up"}), "10.9.8.7");
}

TEST_F(LocalAddressTest, IgnoresADefaultRouteToLoopback) {
    EXPECT_EQ(LocalAddressBeside({"link set zarn2 down", "route add default dev lo src 127.0.0.1"}), "10.1.2.3");
}

TEST_F(LocalAddressTest, IsLoopbackWithoutANetwork) {
    std::string address;
    test::RunInNetworkNamespace([&] { address = LocalAddress(); });
    EXPECT_EQ(address, "127.0.0.1");
}

TEST_F(LocalAddressTest, FollowsAChangeAtOnce) {
    std::string before;
    std::string after;
    test::RunInNetworkNamespace([&] {
        ASSERT_TRUE(test::Ip("link add zarn1 type veth peer name zarn2"));
        ASSERT_TRUE(test::Ip("address add 10.1.2.3/24 dev zarn1"));
        ASSERT_TRUE(test::Ip("link set zarn1 up"));
        before = LocalAddress();
        ASSERT_TRUE(test::Ip("address flush dev zarn1"));
        ASSERT_TRUE(test::Ip("address add 10.4.5.6/24 dev zarn1"));
        after = LocalAddress();
    });
    EXPECT_EQ(before, "10.1.2.3");
    EXPECT_EQ(after, "10.4.5.6");
}

TEST(GetLocalIPAddress, IsTheSameOnManyThreads) {
    auto const expected = GetLocalIPAddress();
    std::vector<std::thread> threads;
    threads.reserve(4);
    for (int number = 0; number < 4; ++number) {
        threads.emplace_back([expected] {
            for (int count = 0; count < 100; ++count) EXPECT_EQ(GetLocalIPAddress(), expected);
        });
    }
    for (auto& thread : threads) thread.join();
}

#ifndef ZARN_SANITIZED // sanitizers need descriptors of their own
TEST(GetLocalIPAddress, IsLoopbackWithoutAFreeDescriptor) {
    rlimit before{};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &before), 0);
    rlimit none = before;
    none.rlim_cur = 0;
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
    auto const address = LocalAddress();
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &before), 0);
    EXPECT_EQ(address, "127.0.0.1");
}
#endif

TEST(GetLocalIPAddress, LeavesNoDescriptorOpen) {
    int const before = dup(0);
    close(before);
    for (int count = 0; count < 10; ++count) GetLocalIPAddress();
    int const after = dup(0);
    close(after);
    EXPECT_EQ(after, before);
}

TEST(MakeLocalUrl, JoinsSchemeAddressAndPort) {
    EXPECT_EQ(MakeLocalUrl("rtsp", 554), "rtsp://" + GetLocalIPAddress().to_string() + ":554");
    EXPECT_EQ(MakeLocalWebUrl(false, 80), MakeLocalUrl("http", 80));
    EXPECT_EQ(MakeLocalWebUrl(true, 0), MakeLocalUrl("https", 0));
}

TEST(GetHostname, IsTheKernelsName) {
    std::array<char, HOST_NAME_MAX + 1> name{};
    ASSERT_EQ(gethostname(name.data(), name.size()), 0);
    EXPECT_EQ(GetHostname(), name.data());
}

} // namespace
} // namespace zarn::network
