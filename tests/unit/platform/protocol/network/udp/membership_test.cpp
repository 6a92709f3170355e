#include "failing_new.h"
#include "protocol/network/udp/membership.h"
#include "support/network_namespace.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/udp.hpp>
#include <gtest/gtest.h>

#include <new>
#include <span>

namespace zarn::protocol::network::udp {
namespace {

using boost::asio::ip::udp;

/// True if the n-th allocation was reached and failed.
bool FollowsWithoutMemory(Membership& membership, int socket, std::span<zarn::network::Interface const> interfaces,
                          int n) {
    test::FailingNew const failing(n);
    try {
        membership.Follow(socket, interfaces);
        return false;
    } catch (std::bad_alloc const&) {
        return true;
    }
}

TEST(Membership, JoinsAfterAnAllocationFailure) {
    bool const entered = test::RunInNetworkNamespace([] {
        ASSERT_TRUE(test::Ip("link set lo up multicast on"));
        auto const interfaces = zarn::network::ReadInterfaces();
        bool failed = true;
        int n = 0;
        for (; failed; ++n) {
            boost::asio::io_context context;
            udp::socket socket(context, udp::v4());
            Membership membership(boost::asio::ip::make_address_v4("239.255.255.250"));
            failed = FollowsWithoutMemory(membership, socket.native_handle(), interfaces, n);
            EXPECT_TRUE(membership.Follow(socket.native_handle(), interfaces).empty()) << "after allocation " << n;
            EXPECT_EQ(membership.GetCount(), 1U);
        }
        EXPECT_GT(n, 1) << "no allocation failed";
    });
    if (!entered) GTEST_SKIP() << test::WhyNoNamespace();
}

} // namespace
} // namespace zarn::protocol::network::udp
