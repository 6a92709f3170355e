#include <zarn/network/address.h>
#include <zarn/protocol/network/udp/throttle.h>

#include <boost/asio/ip/address_v4.hpp>
#include <gtest/gtest.h>

#include <chrono>

namespace zarn::protocol::network::udp {
namespace {

using namespace std::chrono_literals;
using boost::asio::ip::address_v4;
using zarn::network::address::v4::Make;

auto const Start = Throttle::Clock::time_point() + 1h;
auto const Somebody = Make(10, 0, 0, 1);
auto const SomebodyElse = Make(10, 0, 0, 2);

/// Number of datagrams, out of `count` at this time, that pass.
unsigned Flood(Throttle& throttle, address_v4 const& source, unsigned count, Throttle::Clock::time_point now) {
    unsigned passed = 0;
    for (unsigned i = 0; i < count; ++i) {
        if (throttle.Admit(source, now)) ++passed;
    }
    return passed;
}

/// The n-th of many distinct addresses.
address_v4 Address(unsigned n) { return address_v4(0x0a000000U + n); }

TEST(Throttle, AdmitsABurstOfTwenty) {
    Throttle throttle;
    EXPECT_EQ(Flood(throttle, Somebody, 1000, Start), 20U);
}

TEST(Throttle, AdmitsTenPerSecondAfterABurst) {
    Throttle throttle;
    Flood(throttle, Somebody, 1000, Start);
    EXPECT_EQ(Flood(throttle, Somebody, 1000, Start + 99ms), 0U);
    EXPECT_EQ(Flood(throttle, Somebody, 1000, Start + 100ms), 1U);
    EXPECT_EQ(Flood(throttle, Somebody, 1000, Start + 1100ms), 10U);
}

TEST(Throttle, AdmitsAWholeBurstAgainAfterTwoSeconds) {
    Throttle throttle;
    Flood(throttle, Somebody, 1000, Start);
    EXPECT_EQ(Flood(throttle, Somebody, 1000, Start + 2s), 20U);
    EXPECT_EQ(Flood(throttle, Somebody, 1000, Start + 1h), 20U);
}

TEST(Throttle, BoundsEachSourceByItself) {
    Throttle throttle;
    Flood(throttle, Somebody, 100'000, Start);
    EXPECT_EQ(Flood(throttle, SomebodyElse, 5, Start), 5U);
}

TEST(Throttle, BoundsAllSourcesTogether) {
    Throttle throttle;
    unsigned passed = 0;
    for (unsigned i = 0; i < 5000; ++i) {
        passed += Flood(throttle, Address(i), 1, Start);
    }
    EXPECT_EQ(passed, 400U);
    EXPECT_EQ(Flood(throttle, Somebody, 1, Start + 4ms), 0U);
    EXPECT_EQ(Flood(throttle, Somebody, 1, Start + 5ms), 1U);
}

TEST(Throttle, RemembersABoundedNumberOfSources) {
    Throttle throttle;
    auto now = Start;
    for (unsigned i = 0; i < 20'000; ++i, now += 1ms) {
        throttle.Admit(Address(i), now);
        ASSERT_LE(throttle.GetSourceCount(), Throttle::MaximumSources);
    }
    EXPECT_GE(throttle.GetSourceCount(), 100U);
}

TEST(Throttle, DoesNotForgetAFloodBecauseOfManyOtherSources) {
    Throttle throttle;
    auto now = Start;
    for (unsigned i = 0; i < 4000; ++i, now += 6ms) { // 166 per second
        if (i % 16 == 0) Flood(throttle, Somebody, 100, now);
        throttle.Admit(Address(i + 256), now);
    }
    EXPECT_LE(Flood(throttle, Somebody, 100, now), 1U);
}

} // namespace
} // namespace zarn::protocol::network::udp
