#include "host/web/used_answers.h"

#include <gmock/gmock.h>

#include <atomic>
#include <cstddef>
#include <string>
#include <thread>
#include <vector>

namespace zarn::host::web {
namespace {

using namespace std::chrono_literals;
using authentication::AnswerIdentity;
using Time = UsedAnswers::Clock::time_point;

Time const Now{100h};

AnswerIdentity const Answer{.nonce = "n", .nonceCount = "00000001", .clientNonce = "c"};

TEST(UsedAnswers, TakeAnAnswerOnce) {
    UsedAnswers used;
    EXPECT_TRUE(used.Add(Answer, Now, Now));
    EXPECT_FALSE(used.Add(Answer, Now, Now));
    EXPECT_EQ(used.GetSize(), 1U);
}

TEST(UsedAnswers, TellAnswersApartByEachPart) {
    UsedAnswers used;
    EXPECT_TRUE(used.Add(Answer, Now, Now));
    for (auto const part : {&AnswerIdentity::nonce, &AnswerIdentity::nonceCount, &AnswerIdentity::clientNonce}) {
        auto other = Answer;
        other.*part = "other";
        EXPECT_TRUE(used.Add(other, Now, Now));
        EXPECT_FALSE(used.Add(other, Now, Now));
    }
}

TEST(UsedAnswers, DoNotMixUpTextsThatAreOneWhenJoined) {
    UsedAnswers used;
    EXPECT_TRUE(used.Add({.nonce = "n", .nonceCount = "1", .clientNonce = "23"}, Now, Now));
    EXPECT_TRUE(used.Add({.nonce = "n", .nonceCount = "12", .clientNonce = "3"}, Now, Now));
}

TEST(UsedAnswers, TakeTheCountsOfAClientInAnyOrder) {
    UsedAnswers used;
    for (auto const* count : {"00000003", "00000001", "00000010", "00000002"}) {
        EXPECT_TRUE(used.Add({.nonce = "n", .nonceCount = count, .clientNonce = "c"}, Now, Now)) << count;
    }
    EXPECT_FALSE(used.Add({.nonce = "n", .nonceCount = "00000010", .clientNonce = "c"}, Now, Now));
}

TEST(UsedAnswers, AreRememberedAsLongAsTheirNonceMayCount) {
    UsedAnswers used;
    EXPECT_TRUE(used.Add(Answer, Now, Now));
    EXPECT_FALSE(used.Add(Answer, Now, Now + UsedAnswers::LongestLife));
}

TEST(UsedAnswers, AreForgottenSoonAfterwards) {
    UsedAnswers used;
    EXPECT_TRUE(used.Add(Answer, Now, Now));
    auto const later = Now + UsedAnswers::LongestLife + 10s;
    EXPECT_TRUE(used.Add({.nonce = "other", .nonceCount = "1", .clientNonce = "c"}, later, later));
    EXPECT_EQ(used.GetSize(), 1U);
}

/// Adds one answer each second, for as many seconds.
void Fill(UsedAnswers& used, int seconds) {
    for (int second = 0; second < seconds; ++second) {
        auto const nonce = std::to_string(second);
        auto const made = Now + std::chrono::seconds(second);
        EXPECT_TRUE(used.Add({.nonce = nonce, .nonceCount = "1", .clientNonce = "c"}, made, made)) << second;
    }
}

TEST(UsedAnswers, AreNeverMoreThanTheirMaximum) {
    UsedAnswers used(100);
    Fill(used, 250);
    EXPECT_LE(used.GetSize(), 100U);
    EXPECT_GE(used.GetSize(), 90U);
}

TEST(UsedAnswers, ThatHadToGoCannotBeUsedAgain) {
    UsedAnswers used(100);
    Fill(used, 250);
    for (int second = 0; second < 250; ++second) {
        auto const nonce = std::to_string(second);
        EXPECT_FALSE(used.Add({.nonce = nonce, .nonceCount = "1", .clientNonce = "c"},
                              Now + std::chrono::seconds(second), Now + 250s))
            << second;
    }
}

TEST(UsedAnswers, LetANewNonceCountAlsoWhenTheyAreFullOfOneSecond) {
    UsedAnswers used(10);
    for (int count = 0; count < 11; ++count) {
        EXPECT_TRUE(used.Add({.nonce = "n", .nonceCount = std::to_string(count), .clientNonce = "c"}, Now, Now));
    }
    EXPECT_FALSE(used.Add({.nonce = "n", .nonceCount = "new", .clientNonce = "c"}, Now, Now));
    EXPECT_TRUE(used.Add(Answer, Now + 1ms, Now + 1ms));
}

TEST(UsedAnswers, TakeAnAnswerOnceAlsoFromManyThreads) {
    UsedAnswers used;
    std::atomic<int> taken = 0;
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread) {
        threads.emplace_back([&] {
            for (int count = 0; count < 500; ++count) {
                auto const text = std::to_string(count);
                if (used.Add({.nonce = "n", .nonceCount = text, .clientNonce = "c"}, Now, Now)) ++taken;
            }
        });
    }
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(taken, 500);
}

} // namespace
} // namespace zarn::host::web
