#include "host/web/challenges.h"

#include <gmock/gmock.h>

#include <atomic>
#include <cstddef>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace zarn::host::web {
namespace {

using namespace std::chrono_literals;
using authentication::DigestUse;
using testing::Eq;
using testing::Optional;

Nonces::Clock::time_point const Start{100h};

TEST(Nonces, AreHexadecimal) { EXPECT_THAT(Nonces().Make(Start), testing::MatchesRegex("[0-9a-f]{64}")); }

TEST(Nonces, DifferEvenWhenCreatedAtTheSameTime) {
    Nonces nonces;
    EXPECT_NE(nonces.Make(Start), nonces.Make(Start));
}

TEST(Nonces, EncodeTheirCreationTimeInMilliseconds) {
    Nonces nonces;
    EXPECT_THAT(nonces.GetTime(nonces.Make(Start)), Optional(Start));
    EXPECT_THAT(nonces.GetTime(nonces.Make(Start + 1999us)), Optional(Start + 1ms));
}

TEST(Nonces, OfOthersAreNotRecognised) {
    Nonces others;
    EXPECT_THAT(Nonces().GetTime(others.Make(Start)), Eq(std::nullopt));
}

TEST(Nonces, AreNotRecognisedWhenAnyCharacterIsChanged) {
    Nonces nonces;
    auto const nonce = nonces.Make(Start);
    for (std::size_t i = 0; i < nonce.size(); ++i) {
        auto changed = nonce;
        changed[i] = changed[i] == '0' ? '1' : '0';
        EXPECT_THAT(nonces.GetTime(changed), Eq(std::nullopt)) << i;
    }
}

TEST(Nonces, OfAnotherLengthAreNotRecognised) {
    Nonces nonces;
    EXPECT_THAT(nonces.GetTime(""), Eq(std::nullopt));
    EXPECT_THAT(nonces.GetTime(nonces.Make(Start) + "0"), Eq(std::nullopt));
    EXPECT_THAT(nonces.GetTime(nonces.Make(Start).substr(1)), Eq(std::nullopt));
}

DigestUse const Response{.nonce = "n", .nc = "00000001", .cnonce = "c"};

TEST(UsedResponses, TakeAResponseOnce) {
    UsedResponses used;
    EXPECT_TRUE(used.Add(Response, Start, Start));
    EXPECT_FALSE(used.Add(Response, Start, Start));
    EXPECT_EQ(used.GetSize(), 1U);
}

TEST(UsedResponses, TellResponsesApartByEachPart) {
    UsedResponses used;
    EXPECT_TRUE(used.Add(Response, Start, Start));
    for (auto const part : {&DigestUse::nonce, &DigestUse::nc, &DigestUse::cnonce}) {
        auto other = Response;
        other.*part = "other";
        EXPECT_TRUE(used.Add(other, Start, Start));
        EXPECT_FALSE(used.Add(other, Start, Start));
    }
}

TEST(UsedResponses, DoNotConfusePartsWithEqualConcatenation) {
    UsedResponses used;
    EXPECT_TRUE(used.Add({.nonce = "n", .nc = "1", .cnonce = "23"}, Start, Start));
    EXPECT_TRUE(used.Add({.nonce = "n", .nc = "12", .cnonce = "3"}, Start, Start));
}

TEST(UsedResponses, AcceptNonceCountsInAnyOrder) {
    UsedResponses used;
    for (auto const* count : {"00000003", "00000001", "00000010", "00000002"}) {
        EXPECT_TRUE(used.Add({.nonce = "n", .nc = count, .cnonce = "c"}, Start, Start)) << count;
    }
    EXPECT_FALSE(used.Add({.nonce = "n", .nc = "00000010", .cnonce = "c"}, Start, Start));
}

TEST(UsedResponses, AreKeptForTheLifetimeOfTheNonce) {
    UsedResponses used;
    EXPECT_TRUE(used.Add(Response, Start, Start));
    EXPECT_FALSE(used.Add(Response, Start, Start + UsedResponses::LongestLife));
}

TEST(UsedResponses, AreForgottenSoonAfterwards) {
    UsedResponses used;
    EXPECT_TRUE(used.Add(Response, Start, Start));
    auto const later = Start + UsedResponses::LongestLife + 10s;
    EXPECT_TRUE(used.Add({.nonce = "other", .nc = "1", .cnonce = "c"}, later, later));
    EXPECT_EQ(used.GetSize(), 1U);
}

/// Adds `seconds` responses, one per second.
void Fill(UsedResponses& used, int seconds) {
    for (int second = 0; second < seconds; ++second) {
        auto const nonce = std::to_string(second);
        auto const made = Start + std::chrono::seconds(second);
        EXPECT_TRUE(used.Add({.nonce = nonce, .nc = "1", .cnonce = "c"}, made, made)) << second;
    }
}

TEST(UsedResponses, NeverExceedTheirMaximum) {
    UsedResponses used(100);
    Fill(used, 250);
    EXPECT_LE(used.GetSize(), 100U);
    EXPECT_GE(used.GetSize(), 90U);
}

TEST(UsedResponses, StayRejectedAfterEviction) {
    UsedResponses used(100);
    Fill(used, 250);
    for (int second = 0; second < 250; ++second) {
        auto const nonce = std::to_string(second);
        EXPECT_FALSE(
            used.Add({.nonce = nonce, .nc = "1", .cnonce = "c"}, Start + std::chrono::seconds(second), Start + 250s))
            << second;
    }
}

TEST(UsedResponses, AcceptANewerNonceWhenFull) {
    UsedResponses used(10);
    for (int count = 0; count < 11; ++count) {
        EXPECT_TRUE(used.Add({.nonce = "n", .nc = std::to_string(count), .cnonce = "c"}, Start, Start));
    }
    EXPECT_FALSE(used.Add({.nonce = "n", .nc = "new", .cnonce = "c"}, Start, Start));
    EXPECT_TRUE(used.Add(Response, Start + 1ms, Start + 1ms));
}

TEST(UsedResponses, TakeAResponseOnceAlsoFromManyThreads) {
    UsedResponses used;
    std::atomic<int> taken = 0;
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread) {
        threads.emplace_back([&] {
            for (int count = 0; count < 500; ++count) {
                auto const text = std::to_string(count);
                if (used.Add({.nonce = "n", .nc = text, .cnonce = "c"}, Start, Start)) ++taken;
            }
        });
    }
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(taken, 500);
}

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
