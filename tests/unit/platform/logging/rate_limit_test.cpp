#include <zarn/logging/rate_limit.h>

#include <gtest/gtest.h>

namespace zarn::logging {
namespace {

using namespace std::chrono_literals;

constexpr RateLimit::Clock::time_point Start{100s};

TEST(RateLimit, AdmitsTheFirst) {
    RateLimit limit;
    EXPECT_EQ(limit.Admit(Start), 0U);
}

TEST(RateLimit, CountsWhatComesWithinTheInterval) {
    RateLimit limit(1s);
    limit.Admit(Start);
    EXPECT_EQ(limit.Admit(Start), std::nullopt);
    EXPECT_EQ(limit.Admit(Start + 999ms), std::nullopt);
    EXPECT_EQ(limit.Admit(Start + 1s), 2U);
}

TEST(RateLimit, StartsAnIntervalWithEachReport) {
    RateLimit limit(1s);
    limit.Admit(Start);
    EXPECT_EQ(limit.Admit(Start + 5s), 0U);
    EXPECT_EQ(limit.Admit(Start + 5500ms), std::nullopt);
    EXPECT_EQ(limit.Admit(Start + 6s), 1U);
}

} // namespace
} // namespace zarn::logging
