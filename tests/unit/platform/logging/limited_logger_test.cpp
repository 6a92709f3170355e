#include "support/eventually.h"

#include <zarn/logging/capture.h>
#include <zarn/logging/limited_logger.h>

#include <gtest/gtest.h>

namespace zarn::logging {
namespace {

using namespace std::chrono_literals;

constexpr RateLimit::Clock::time_point Start{100s};

TEST(RateLimit, AdmitsTheFirst) {
    RateLimit limit;
    EXPECT_EQ(limit.Admit(Start), 0U);
}

TEST(RateLimit, CountsCallsWithinTheInterval) {
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

TEST(LimitedLogger, WritesTheFirstLineAsItIs) {
    Capture const capture;
    LimitedLogger logger("test");
    logger.Log(Level::Warning, "%0% refused %1%", "somebody", 7);
    auto const lines = capture.GetLines();
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_EQ(lines[0].level, Level::Warning);
    EXPECT_EQ(lines[0].name, "test");
    EXPECT_EQ(lines[0].text, "somebody refused 7");
}

TEST(LimitedLogger, WritesOneLineInAnInterval) {
    Capture const capture;
    LimitedLogger logger("test", 1h);
    for (int i = 0; i < 100; ++i) logger.Log(Level::Warning, "refused");
    EXPECT_EQ(capture.GetLines().size(), 1U);
}

TEST(LimitedLogger, TellsHowManyLinesItHasLeftOut) {
    Capture const capture;
    LimitedLogger logger("test", 1ms);
    EXPECT_TRUE(test::Eventually([&] {
        logger.Log(Level::Warning, "refused");
        logger.Log(Level::Warning, "refused");
        auto const lines = capture.GetLines();
        return lines.back().text.starts_with("refused (") &&
               lines.back().text.ends_with(" more since the last report)");
    }));
}

TEST(LimitedLogger, DoesNotCountLinesBelowTheLevel) {
    LimitedLogger logger("test", 1h);
    logger.Log(Level::Trace, "not written");
    Capture const capture;
    logger.Log(Level::Warning, "refused");
    EXPECT_TRUE(capture.Contains("refused"));
}

} // namespace
} // namespace zarn::logging
