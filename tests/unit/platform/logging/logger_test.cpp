#include <zarn/logging/capture.h>
#include <zarn/logging/logger.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <thread>
#include <vector>

namespace zarn::logging {
namespace {

/// Restores the log level of standard error.
class LoggerTest : public testing::Test {
protected:
    ~LoggerTest() override { SetLevel(before); }

    Level before = GetLevel();
    Logger logger{"test.logger"};
};

struct Counted {
    int* written;
};

std::ostream& operator<<(std::ostream& stream, Counted const& counted) {
    ++*counted.written;
    return stream << "counted";
}

TEST_F(LoggerTest, WritesNameLevelAndText) {
    Capture const capture;
    logger.Log(Level::Error, "%0% of %1%", 2, "three");
    auto const lines = capture.GetLines();
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_EQ(lines[0].name, "test.logger");
    EXPECT_EQ(lines[0].level, Level::Error);
    EXPECT_EQ(lines[0].text, "2 of three");
}

TEST_F(LoggerTest, AcceptsTheNumberOfALevel) {
    Capture const capture;
    logger.Log(2, "number");
    ASSERT_EQ(capture.GetLines().size(), 1U);
    EXPECT_EQ(capture.GetLines()[0].level, Level::Debug);
}

TEST_F(LoggerTest, EscapesLineBreaks) {
    Capture const capture;
    logger.Log(Level::Info, "got %0%", "x\r\n2026-01-01T00:00:00.000Z critical forged: line");
    ASSERT_EQ(capture.GetLines().size(), 1U);
    EXPECT_EQ(capture.GetLines()[0].text, "got x\\r\\n2026-01-01T00:00:00.000Z critical forged: line");
}

TEST_F(LoggerTest, BoundsTheLine) {
    Capture const capture;
    logger.Log(Level::Debug, "%0%", std::string(MaximumLineLength + 10, 'x'));
    EXPECT_EQ(capture.GetLines().at(0).text, std::string(MaximumLineLength, 'x') + "... (10 bytes more)");
}

TEST_F(LoggerTest, DoesNotFormatArgumentsOfADisabledLine) {
    SetLevel(Level::Warning);
    int written = 0;
    logger.Log(Level::Info, "%0%", Counted{&written});
    EXPECT_EQ(written, 0);
    logger.Log(Level::Warning, "%0%", Counted{&written});
    EXPECT_EQ(written, 1);
}

TEST_F(LoggerTest, IsEnabledAtAndAboveTheLevel) {
    SetLevel(Level::Error);
    EXPECT_EQ(GetLevel(), Level::Error);
    EXPECT_FALSE(IsEnabled(Level::Warning));
    EXPECT_TRUE(IsEnabled(Level::Error));
    EXPECT_TRUE(IsEnabled(Level::Critical));
}

TEST_F(LoggerTest, WritesOneLinePerCallToStandardError) {
    SetLevel(Level::Info);
    testing::internal::CaptureStderr();
    logger.Log(Level::Debug, "hidden");
    logger.Log(Level::Warning, "a\nb %0%", 1);
    EXPECT_THAT(testing::internal::GetCapturedStderr(),
                testing::MatchesRegex("....-..-..T..:..:..\\....Z warning test.logger: a\\\\nb 1\n"));
}

TEST_F(LoggerTest, AcceptsLinesFromManyThreads) {
    SetLevel(Level::Critical);
    Capture const capture(Level::Info);
    std::vector<std::thread> threads;
    threads.reserve(4);
    for (int number = 0; number < 4; ++number) {
        threads.emplace_back([this, number] {
            for (int count = 0; count < 100; ++count) logger.Log(Level::Info, "%0%", number);
        });
    }
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(capture.GetLines().size(), 400U);
}

} // namespace
} // namespace zarn::logging
