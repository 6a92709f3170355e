#include "host/access/used_responses.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstddef>
#include <string>
#include <thread>
#include <vector>

namespace zarn::host {
namespace {

using namespace std::chrono_literals;
using authentication::DigestUse;

UsedResponses::Clock::time_point const Began{100h};

DigestUse const Response{.nonce = "n", .nc = "00000001", .cnonce = "c"};

TEST(UsedResponses, TakeAResponseOnce) {
    UsedResponses used;
    EXPECT_TRUE(used.Add(Response, Began, Began));
    EXPECT_FALSE(used.Add(Response, Began, Began));
    EXPECT_EQ(used.GetSize(), 1U);
}

TEST(UsedResponses, TellResponsesApartByEachPart) {
    UsedResponses used;
    EXPECT_TRUE(used.Add(Response, Began, Began));
    for (auto const part : {&DigestUse::nonce, &DigestUse::nc, &DigestUse::cnonce}) {
        auto other = Response;
        other.*part = "other";
        EXPECT_TRUE(used.Add(other, Began, Began));
        EXPECT_FALSE(used.Add(other, Began, Began));
    }
}

TEST(UsedResponses, DoNotConfusePartsWithEqualConcatenation) {
    UsedResponses used;
    EXPECT_TRUE(used.Add({.nonce = "n", .nc = "1", .cnonce = "23"}, Began, Began));
    EXPECT_TRUE(used.Add({.nonce = "n", .nc = "12", .cnonce = "3"}, Began, Began));
}

TEST(UsedResponses, AcceptNonceCountsInAnyOrder) {
    UsedResponses used;
    for (auto const* count : {"00000003", "00000001", "00000010", "00000002"}) {
        EXPECT_TRUE(used.Add({.nonce = "n", .nc = count, .cnonce = "c"}, Began, Began)) << count;
    }
    EXPECT_FALSE(used.Add({.nonce = "n", .nc = "00000010", .cnonce = "c"}, Began, Began));
}

TEST(UsedResponses, AreKeptForTheLifetimeOfTheNonce) {
    UsedResponses used;
    EXPECT_TRUE(used.Add(Response, Began, Began));
    EXPECT_FALSE(used.Add(Response, Began, Began + UsedResponses::LongestLife));
}

TEST(UsedResponses, AreForgottenSoonAfterwards) {
    UsedResponses used;
    EXPECT_TRUE(used.Add(Response, Began, Began));
    auto const later = Began + UsedResponses::LongestLife + 10s;
    EXPECT_TRUE(used.Add({.nonce = "other", .nc = "1", .cnonce = "c"}, later, later));
    EXPECT_EQ(used.GetSize(), 1U);
}

/// Adds `seconds` responses, one per second.
void Fill(UsedResponses& used, int seconds) {
    for (int second = 0; second < seconds; ++second) {
        auto const nonce = std::to_string(second);
        auto const made = Began + std::chrono::seconds(second);
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
            used.Add({.nonce = nonce, .nc = "1", .cnonce = "c"}, Began + std::chrono::seconds(second), Began + 250s))
            << second;
    }
}

TEST(UsedResponses, AcceptANewerNonceWhenFull) {
    UsedResponses used(10);
    for (int count = 0; count < 11; ++count) {
        EXPECT_TRUE(used.Add({.nonce = "n", .nc = std::to_string(count), .cnonce = "c"}, Began, Began));
    }
    EXPECT_FALSE(used.Add({.nonce = "n", .nc = "new", .cnonce = "c"}, Began, Began));
    EXPECT_TRUE(used.Add(Response, Began + 1ms, Began + 1ms));
}

TEST(UsedResponses, TakeAResponseOnceAlsoFromManyThreads) {
    UsedResponses used;
    std::atomic<int> taken = 0;
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread) {
        threads.emplace_back([&] {
            for (int count = 0; count < 500; ++count) {
                auto const text = std::to_string(count);
                if (used.Add({.nonce = "n", .nc = text, .cnonce = "c"}, Began, Began)) ++taken;
            }
        });
    }
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(taken, 500);
}

} // namespace
} // namespace zarn::host
