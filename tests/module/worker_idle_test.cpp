#include "pull_point_fixture.h"
#include "support/eventually.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace zarn::test {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

/// Number of pool worker threads in this process.
std::size_t CountWorkers() {
    std::size_t count = 0;
    for (auto const& task : std::filesystem::directory_iterator("/proc/self/task")) {
        std::string name;
        std::getline(std::ifstream(task.path() / "comm"), name);
        count += name == "zarn.job" ? 1 : 0;
    }
    return count;
}

class Workers : public PullPointFixture {};

TEST_F(Workers, EndTenSecondsAfterTheirExchangesExceptForOne) {
    constexpr std::size_t Count = 16;
    std::vector<std::shared_ptr<web::response::Pending>> replies;
    while (replies.size() < Count) replies.push_back(PostPull(Subscribe(), 1, "PT1H"));
    ASSERT_TRUE(Eventually([] { return CountWorkers() == Count; }));
    auto const begin = Clock::now();
    Publish(MakeFieldEvent("one"));
    for (auto const& reply : replies) EXPECT_EQ(ToReply(WaitFor(*reply)).status, 200);
    EXPECT_TRUE(Eventually([] { return CountWorkers() == 1; }, 60s));
    EXPECT_GE(Clock::now() - begin, 10s);
    EXPECT_EQ(AskAnonymously("<tds:GetHostname/>").status, 200);
    EXPECT_EQ(CountWorkers(), 1U) << "the remaining worker did not serve the request";
}

} // namespace
} // namespace zarn::test
