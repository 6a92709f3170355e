#include "support/eventually.h"

#include <gtest/gtest.h>

#include <chrono>

namespace zarn::test {
namespace {

using namespace std::chrono_literals;

TEST(Eventually, EndsWithTheFirstCheckThatHolds) {
    int checks = 0;
    EXPECT_TRUE(Eventually([&] { return ++checks == 3; }));
    EXPECT_EQ(checks, 3);
}

TEST(Eventually, ChecksOnceWithATimeoutOfZero) {
    int checks = 0;
    EXPECT_FALSE(Eventually(
        [&] {
            ++checks;
            return false;
        },
        0ms));
    EXPECT_EQ(checks, 1);
}

TEST(Eventually, GivesUpAfterTheLimitAndNotBefore) {
    auto const begin = std::chrono::steady_clock::now();
    EXPECT_FALSE(Eventually([] { return false; }, 20ms));
    EXPECT_GE(std::chrono::steady_clock::now() - begin, 20ms);
}

} // namespace
} // namespace zarn::test
