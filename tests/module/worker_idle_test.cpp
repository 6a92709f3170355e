#include "pull_point_fixture.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

namespace zarn::test {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

/// The threads of this process that are workers of a pool.
std::size_t CountWorkers() {
    std::size_t count = 0;
    for (auto const& task : std::filesystem::directory_iterator("/proc/self/task")) {
        std::string name;
        std::getline(std::ifstream(task.path() / "comm"), name);
        count += name == "zarn.job" ? 1 : 0;
    }
    return count;
}

/// Waits until there are as many workers; false when there are not within the time.
bool AwaitWorkers(std::size_t count, std::chrono::seconds limit) {
    for (auto const deadline = Clock::now() + limit; CountWorkers() != count; std::this_thread::sleep_for(5ms)) {
        if (Clock::now() > deadline) return false;
    }
    return true;
}

class Workers : public PullPointFixture {};

TEST_F(Workers, GoTenSecondsAfterTheirExchangesHaveEndedAllButOne) {
    constexpr std::size_t Count = 16;
    std::vector<std::shared_ptr<web::response::Pending>> replies;
    while (replies.size() < Count) replies.push_back(PostPull(Subscribe(), 1, "PT1H"));
    ASSERT_TRUE(AwaitWorkers(Count, 20s));
    auto const begin = Clock::now();
    Publish(MakeFieldEvent("one"));
    for (auto const& reply : replies) EXPECT_EQ(ToReply(WaitFor(*reply)).status, 200);
    EXPECT_TRUE(AwaitWorkers(1, 60s));
    EXPECT_GE(Clock::now() - begin, 10s);
    EXPECT_EQ(AskAnonymously("<tds:GetHostname/>").status, 200);
    EXPECT_EQ(CountWorkers(), 1U) << "the one that stayed has served it";
}

} // namespace
} // namespace zarn::test
