#include "group_test.h"
#include "unreadable_interfaces.h"

#include <zarn/logging/capture.h>

#include <gtest/gtest.h>

#include <chrono>

namespace zarn::protocol::network::udp {
namespace {

using namespace std::chrono_literals;

class UnreadableGroupTest : public GroupTest, public testing::WithParamInterface<test::Lack> {};

TEST_P(UnreadableGroupTest, RereadsTheInterfacesWithoutANetworkChange) {
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

} // namespace
} // namespace zarn::protocol::network::udp
