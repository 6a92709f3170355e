#include "host/web/failed_logins.h"

#include <gtest/gtest.h>

namespace zarn::host::web {
namespace {

using namespace std::chrono_literals;

auto const Peer = boost::asio::ip::make_address("192.0.2.1");
auto const Other = boost::asio::ip::make_address("192.0.2.2");
FailedLogins::Clock::time_point const Start{1h};

void Fail(FailedLogins& logins, int times, std::size_t limit, FailedLogins::Clock::time_point when) {
    for (int i = 0; i < times; ++i) logins.Count(Peer, limit, when);
}

TEST(FailedLogins, LetAnAddressTryAsOftenAsTheLimitSays) {
    FailedLogins logins;
    Fail(logins, 3, 3, Start);
    EXPECT_FALSE(logins.GetWait(Peer, 3, Start));
}

TEST(FailedLogins, MakeAnAddressWaitThatFailedMoreOften) {
    FailedLogins logins;
    Fail(logins, 4, 3, Start);
    EXPECT_EQ(logins.GetWait(Peer, 3, Start + 10s), 50s);
    EXPECT_FALSE(logins.GetWait(Other, 3, Start + 10s));
}

TEST(FailedLogins, AreForgottenAfterAMinute) {
    FailedLogins logins;
    Fail(logins, 4, 3, Start);
    EXPECT_EQ(logins.GetWait(Peer, 3, Start + 59s + 1ms), 1s);
    EXPECT_FALSE(logins.GetWait(Peer, 3, Start + 60s));
}

TEST(FailedLogins, CountWithinAWindowThatSlides) {
    FailedLogins logins;
    Fail(logins, 2, 3, Start);
    Fail(logins, 2, 3, Start + 30s);
    EXPECT_EQ(logins.GetWait(Peer, 3, Start + 30s), 30s);
    EXPECT_FALSE(logins.GetWait(Peer, 3, Start + 61s));
    Fail(logins, 2, 3, Start + 61s);
    EXPECT_EQ(logins.GetWait(Peer, 3, Start + 61s), 29s);
}

TEST(FailedLogins, LetTheLastSecondBeAWholeOne) {
    FailedLogins logins;
    Fail(logins, 2, 1, Start);
    EXPECT_EQ(logins.GetWait(Peer, 1, Start + 1min - 1ns), 1s);
}

TEST(FailedLogins, GoByALimitThatWasLoweredMeanwhile) {
    FailedLogins logins;
    Fail(logins, 5, 10, Start);
    EXPECT_FALSE(logins.GetWait(Peer, 10, Start));
    EXPECT_TRUE(logins.GetWait(Peer, 2, Start));
}

TEST(FailedLogins, ForgetTheAddressThatFailedLongestAgoWhenThereAreTooMany) {
    FailedLogins logins;
    Fail(logins, 2, 1, Start);
    logins.Count(Other, 1, Start + 1s);
    logins.Count(Other, 1, Start + 1s);
    for (unsigned i = 2; i < FailedLogins::MaximumAddresses; ++i) {
        logins.Count(boost::asio::ip::address_v4(0x0a000000U + i), 1, Start + 2s);
    }
    EXPECT_TRUE(logins.GetWait(Peer, 1, Start + 3s));
    logins.Count(boost::asio::ip::make_address("192.0.2.3"), 1, Start + 3s);
    EXPECT_FALSE(logins.GetWait(Peer, 1, Start + 3s));
    EXPECT_TRUE(logins.GetWait(Other, 1, Start + 3s));
}

} // namespace
} // namespace zarn::host::web
