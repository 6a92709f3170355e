#include "host/access/failed_logins.h"

#include <gtest/gtest.h>

namespace zarn::host {
namespace {

using namespace std::chrono_literals;

auto const Peer = boost::asio::ip::make_address("192.0.2.1");
auto const Other = boost::asio::ip::make_address("192.0.2.2");
FailedLogins::Clock::time_point const Start{1h};

void Fail(FailedLogins& logins, int times, FailedLogins::Clock::time_point when) {
    for (int i = 0; i < times; ++i) logins.Count(Peer, when);
}

TEST(FailedLogins, DoNotBlockAnAddressUpToTheLimit) {
    FailedLogins logins(3);
    Fail(logins, 3, Start);
    EXPECT_FALSE(logins.GetWait(Peer, Start));
}

TEST(FailedLogins, BlockOnlyAnAddressAboveTheLimit) {
    FailedLogins logins(3);
    Fail(logins, 4, Start);
    EXPECT_EQ(logins.GetWait(Peer, Start + 10s), 50s);
    EXPECT_FALSE(logins.GetWait(Other, Start + 10s));
}

TEST(FailedLogins, AreForgottenAfterAMinute) {
    FailedLogins logins(3);
    Fail(logins, 4, Start);
    EXPECT_EQ(logins.GetWait(Peer, Start + 59s + 1ms), 1s);
    EXPECT_FALSE(logins.GetWait(Peer, Start + 60s));
}

TEST(FailedLogins, CountWithinASlidingWindow) {
    FailedLogins logins(3);
    Fail(logins, 2, Start);
    Fail(logins, 2, Start + 30s);
    EXPECT_EQ(logins.GetWait(Peer, Start + 30s), 30s);
    EXPECT_FALSE(logins.GetWait(Peer, Start + 61s));
    Fail(logins, 2, Start + 61s);
    EXPECT_EQ(logins.GetWait(Peer, Start + 61s), 29s);
}

TEST(FailedLogins, RoundTheWaitUpToAWholeSecond) {
    FailedLogins logins(1);
    Fail(logins, 2, Start);
    EXPECT_EQ(logins.GetWait(Peer, Start + 1min - 1ns), 1s);
}

TEST(FailedLogins, ApplyALoweredLimitAtOnce) {
    FailedLogins logins(10);
    Fail(logins, 5, Start);
    EXPECT_FALSE(logins.GetWait(Peer, Start));
    logins.SetLimit(2);
    EXPECT_TRUE(logins.GetWait(Peer, Start));
}

TEST(FailedLogins, EvictTheOldestAddressWhenFull) {
    FailedLogins logins(1);
    Fail(logins, 2, Start);
    logins.Count(Other, Start + 1s);
    logins.Count(Other, Start + 1s);
    for (unsigned i = 2; i < FailedLogins::MaximumAddresses; ++i) {
        logins.Count(boost::asio::ip::address_v4(0x0a000000U + i), Start + 2s);
    }
    EXPECT_TRUE(logins.GetWait(Peer, Start + 3s));
    logins.Count(boost::asio::ip::make_address("192.0.2.3"), Start + 3s);
    EXPECT_FALSE(logins.GetWait(Peer, Start + 3s));
    EXPECT_TRUE(logins.GetWait(Other, Start + 3s));
}

} // namespace
} // namespace zarn::host
