#include "host/video/rtsp/guess_limit.h"

#include <gtest/gtest.h>

namespace zarn::host::video::rtsp {
namespace {

using namespace std::chrono_literals;

/// A limit at which 192.0.2.1 has guessed wrongly a number of times.
struct Guesser {
    explicit Guesser(std::size_t guesses) {
        for (std::size_t count = 0; count < guesses; ++count) limit.Count("192.0.2.1", now);
    }

    GuessLimit::Clock::time_point now{100s};
    GuessLimit limit;
};

TEST(GuessLimit, HearsAnAddressThatGuessedSixtyTimes) {
    Guesser const guesser(60);
    EXPECT_FALSE(guesser.limit.IsReached("192.0.2.1", guesser.now));
}

TEST(GuessLimit, IsReachedWithTheNextGuess) {
    Guesser const guesser(61);
    EXPECT_TRUE(guesser.limit.IsReached("192.0.2.1", guesser.now + 59s));
}

TEST(GuessLimit, HearsOtherAddresses) {
    Guesser const guesser(61);
    EXPECT_FALSE(guesser.limit.IsReached("192.0.2.2", guesser.now));
}

TEST(GuessLimit, ForgivesAfterAMinute) {
    Guesser guesser(61);
    EXPECT_FALSE(guesser.limit.IsReached("192.0.2.1", guesser.now + 60s));
    guesser.limit.Count("192.0.2.1", guesser.now + 60s);
    EXPECT_FALSE(guesser.limit.IsReached("192.0.2.1", guesser.now + 60s));
}

TEST(GuessLimit, RemembersABoundedNumberOfAddresses) {
    Guesser guesser(61);
    for (std::size_t index = 0; index < GuessLimit::MaximumAddresses; ++index) {
        guesser.limit.Count(std::to_string(index), guesser.now + 1s);
    }
    EXPECT_EQ(guesser.limit.GetAddressCount(), GuessLimit::MaximumAddresses);
    EXPECT_FALSE(guesser.limit.IsReached("192.0.2.1", guesser.now + 1s)); // the oldest is forgotten
}

} // namespace
} // namespace zarn::host::video::rtsp
