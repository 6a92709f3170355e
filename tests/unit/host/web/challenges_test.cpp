#include "host/web/challenges.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

namespace zarn::host::web {
namespace {

using namespace std::chrono_literals;

class ChallengesTest : public testing::Test {
protected:
    bool Take(std::string const& nonce, char const* count = "00000001", char const* cnonce = "c") {
        return challenges.Accept({.nonce = nonce, .nc = count, .cnonce = cnonce});
    }

    Challenges::Clock::time_point now{100h};
    Challenges challenges{[this] { return now; }};
};

TEST_F(ChallengesTest, LetAResponseToOneOfThemBeUsedOnce) {
    auto const nonce = challenges.MakeNonce();
    EXPECT_TRUE(Take(nonce));
    EXPECT_FALSE(Take(nonce));
    EXPECT_TRUE(Take(nonce, "00000002"));
    EXPECT_TRUE(Take(nonce, "00000001", "d"));
    EXPECT_TRUE(Take(challenges.MakeNonce()));
}

TEST_F(ChallengesTest, AcceptANonceCountOrClientNonceAloneOnce) {
    auto const nonce = challenges.MakeNonce();
    EXPECT_TRUE(Take(nonce, "00000001", ""));
    EXPECT_FALSE(Take(nonce, "00000001", ""));
    EXPECT_TRUE(Take(nonce, "", "c"));
    EXPECT_FALSE(Take(nonce, "", "c"));
}

TEST_F(ChallengesTest, AcceptRepeatedUseWithoutNonceCountAndClientNonce) {
    auto const nonce = challenges.MakeNonce();
    EXPECT_TRUE(Take(nonce, "", ""));
    EXPECT_TRUE(Take(nonce, "", ""));
    now += 5min;
    EXPECT_FALSE(Take(nonce, "", ""));
}

TEST_F(ChallengesTest, ExpireAfterFiveMinutes) {
    auto const nonce = challenges.MakeNonce();
    now += 5min - 1ms;
    EXPECT_TRUE(Take(nonce));
    now += 1ms;
    EXPECT_FALSE(Take(nonce, "00000002"));
}

TEST_F(ChallengesTest, OfOthersAreRejected) {
    EXPECT_FALSE(Take(""));
    EXPECT_FALSE(Take("dcd98b7102dd2f0e8b11d0f600bfb0c093"));
    EXPECT_FALSE(Take(Challenges([this] { return now; }).MakeNonce()));
}

TEST_F(ChallengesTest, AllowAShorterLifetime) {
    auto const nonce = challenges.MakeNonce();
    challenges.SetLife(2s);
    now += 2s - 1ms;
    EXPECT_TRUE(Take(nonce));
    now += 1ms;
    EXPECT_FALSE(Take(nonce, "00000002"));
}

TEST_F(ChallengesTest, RefuseALifetimeOfZeroOrOverFiveMinutes) {
    EXPECT_THROW(challenges.SetLife(0s), std::invalid_argument);
    EXPECT_THROW(challenges.SetLife(301s), std::invalid_argument);
    EXPECT_NO_THROW(challenges.SetLife(300s));
}

TEST_F(ChallengesTest, CannotBePushedOutByAClientThatAsksForMany) {
    auto const nonce = challenges.MakeNonce();
    for (int count = 0; count < 100000; ++count) challenges.MakeNonce();
    EXPECT_TRUE(Take(nonce));
}

} // namespace
} // namespace zarn::host::web
