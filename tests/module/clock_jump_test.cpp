#include "pull_point_fixture.h"
#include "support/asleep.h"

#include <gmock/gmock.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <ctime>
#include <future>

namespace {

/// Offset of the simulated system clock, in seconds.
std::atomic<std::time_t> jump = 0;

} // namespace

/// Overrides the C library's function: the system clock of this process jumps, all other clocks are unaffected.
extern "C" int clock_gettime(clockid_t clock, timespec* time) noexcept {
    auto const status = static_cast<int>(syscall(SYS_clock_gettime, clock, time));
    if (status == 0 && clock == CLOCK_REALTIME) time->tv_sec += jump;
    return status;
}

namespace zarn::test {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr std::time_t Year = 365 * 86400;

/// Processor time used by this process.
std::chrono::microseconds GetProcessorTime() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    auto const span = [](timeval const& value) {
        return std::chrono::seconds(value.tv_sec) + std::chrono::microseconds(value.tv_usec);
    };
    return span(usage.ru_utime) + span(usage.ru_stime);
}

/// The parameter is the size of the jump.
class ClockJump : public PullPointFixture, public testing::WithParamInterface<std::time_t> {
protected:
    void SetUp() override {
        auto const before = std::chrono::system_clock::now();
        jump = 3600;
        auto const after = std::chrono::system_clock::now();
        jump = 0;
        ASSERT_GT(after - before, 30min) << "the clock override has no effect";
    }

    ~ClockJump() override { jump = 0; }
};

TEST_P(ClockJump, DoesNotChangeTheTimeoutOfAPull) {
    auto const path = Subscribe(Termination("9999-01-01T00:00:00Z"));
    auto const begin = Clock::now();
    auto const reply = PostPull(path, 100, "PT0.5S");
    EXPECT_TRUE(OthersSleep(1));
    jump = GetParam();
    EXPECT_EQ(ToReply(WaitFor(*reply)).status, 200);
    EXPECT_GE(Clock::now() - begin, 500ms);
}

TEST_P(ClockJump, DoesNotKeepAnEventFromAWaitingClient) {
    auto const reply = PostPull(Subscribe(Termination("9999-01-01T00:00:00Z")), 100, "PT1H");
    EXPECT_TRUE(OthersSleep(1));
    EXPECT_EQ(reply->GetData().GetState(), web::response::State::NotReady);
    jump = GetParam();
    Publish(MakeFieldEvent("Gate"));
    EXPECT_THAT(GetRules(ToReply(WaitFor(*reply))), testing::ElementsAre("Gate"));
}

TEST_P(ClockJump, CausesNoBusyWaiting) {
    auto const path = Subscribe(Termination("9999-01-01T00:00:00Z"));
    auto const reply = PostPull(path, 100, "PT0.5S");
    Subscribe(Termination("PT1H"));
    jump = GetParam();
    auto const before = GetProcessorTime();
    ASSERT_TRUE(Eventually([&] { return reply->GetData().GetState() == web::response::State::Complete; }));
    EXPECT_LT(GetProcessorTime() - before, 250ms);
}

TEST_P(ClockJump, ShiftsTheExpiryOfSubscriptions) {
    auto const path = Subscribe(Termination("PT1H"));
    jump = GetParam();
    // The timer thread may sleep for minutes; adding an earlier end time wakes it.
    auto const hasEnded = [this](std::string const& ending) {
        if (Pull(ending).status != 200) return true;
        Subscribe(Termination("2001-01-01T00:00:00Z"));
        return false;
    };
    if (GetParam() < 0) {
        EXPECT_EQ(Pull(path).status, 200);
        Renew(path, "PT0.1S");
    }
    EXPECT_TRUE(Eventually([&] { return hasEnded(path); }));
}

INSTANTIATE_TEST_SUITE_P(ByAYear, ClockJump, testing::Values(-Year, Year),
                         [](auto const& tested) { return tested.param < 0 ? "Back" : "Ahead"; });

} // namespace
} // namespace zarn::test
