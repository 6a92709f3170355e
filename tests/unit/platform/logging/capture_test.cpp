#include <zarn/logging/capture.h>
#include <zarn/logging/logger.h>

#include <gtest/gtest.h>

#include <chrono>
#include <optional>
#include <thread>

namespace zarn::logging {
namespace {

using namespace std::chrono_literals;

Logger const logger("test.capture");

TEST(Capture, SeesLinesBelowTheLevelOfStandardError) {
    Capture const capture;
    logger.Log(Level::Trace, "step");
    EXPECT_TRUE(capture.Contains("step"));
}

TEST(Capture, OmitsLinesBelowItsOwnLevel) {
    Capture const all;
    Capture const warnings(Level::Warning);
    logger.Log(Level::Info, "info");
    logger.Log(Level::Warning, "warning");
    EXPECT_EQ(all.GetLines().size(), 2U);
    ASSERT_EQ(warnings.GetLines().size(), 1U);
    EXPECT_EQ(warnings.GetLines()[0].text, "warning");
}

TEST(Capture, KeepsTheOrder) {
    Capture const capture;
    logger.Log(Level::Debug, "first");
    logger.Log(Level::Debug, "second");
    ASSERT_EQ(capture.GetLines().size(), 2U);
    EXPECT_EQ(capture.GetLines()[1].text, "second");
}

TEST(Capture, DisablesItsLevelWhenDestroyed) {
    std::optional<Capture> capture(std::in_place);
    EXPECT_TRUE(IsEnabled(Level::Trace));
    capture.reset();
    EXPECT_FALSE(IsEnabled(Level::Trace));
}

TEST(Capture, FindsPartOfALine) {
    Capture const capture;
    logger.Log(Level::Debug, "one line");
    EXPECT_TRUE(capture.Contains("e l"));
    EXPECT_FALSE(capture.Contains("two"));
}

TEST(Capture, WaitsForALineOfAnotherThread) {
    Capture const capture;
    std::thread other([] { logger.Log(Level::Debug, "from afar"); });
    EXPECT_TRUE(capture.WaitFor("afar", 60s));
    other.join();
}

TEST(Capture, GivesUpWaiting) {
    Capture const capture;
    EXPECT_FALSE(capture.WaitFor("never", 1ms));
}

} // namespace
} // namespace zarn::logging
