#include <zarn/logging/level.h>

#include <gtest/gtest.h>

namespace zarn::logging {
namespace {

constexpr Level All[] = {Level::Trace, Level::Debug, Level::Info, Level::Warning, Level::Error, Level::Critical};

TEST(Level, HasTheNumbersThatCallersLogWith) {
    int number = 1;
    for (auto const level : All) {
        EXPECT_EQ(static_cast<int>(level), number);
        number *= 2;
    }
}

TEST(Level, IsFoundByItsName) {
    for (auto const level : All) EXPECT_EQ(LevelFromString(ToString(level)), level);
}

TEST(Level, IsNotFoundByAnotherName) {
    EXPECT_EQ(LevelFromString("INFO"), std::nullopt);
    EXPECT_EQ(LevelFromString(""), std::nullopt);
    EXPECT_EQ(LevelFromString("info "), std::nullopt);
}

TEST(Level, BetweenTwoHasTheNameOfTheLower) {
    EXPECT_EQ(ToString(Level{0}), "trace");
    EXPECT_EQ(ToString(Level{3}), "debug");
    EXPECT_EQ(ToString(Level{15}), "warning");
    EXPECT_EQ(ToString(Level{1000}), "critical");
}

} // namespace
} // namespace zarn::logging
