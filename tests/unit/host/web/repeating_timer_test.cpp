#include "host/web/repeating_timer.h"
#include "support/eventually.h"
#include "web/io_thread.h"

#include <zarn/logging/capture.h>

#include <boost/asio/post.hpp>
#include <boost/asio/steady_timer.hpp>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <future>
#include <stdexcept>

namespace zarn::host::web {
namespace {

using namespace std::chrono_literals;

class RepeatingTimerTest : public testing::Test {
protected:
    ~RepeatingTimerTest() override { io.Stop(); }

    void Run(std::function<void()> function) {
        boost::asio::post(io.GetContext(), [&] { function(); });
        std::promise<void> done;
        boost::asio::post(io.GetContext(), [&] { done.set_value(); });
        done.get_future().wait();
    }

    bool AwaitCalls(int count) const {
        return test::Eventually([&] { return calls >= count; });
    }

    static constexpr auto Interval = 1ms;

    logging::Capture log;
    std::atomic<int> calls = 0;
    IoThread io;
    RepeatingTimer timer{io.GetContext().get_executor(), Interval, "The work was not done", [this] {
                             if (++calls <= 2) throw std::runtime_error("no memory");
                         }};
};

TEST_F(RepeatingTimerTest, ContinuesAfterAnException) {
    Run([this] { timer.Start(); });
    EXPECT_TRUE(AwaitCalls(5));
    EXPECT_TRUE(log.Contains("The work was not done: no memory"));
}

TEST_F(RepeatingTimerTest, MakesNoCallOnceStopped) {
    Run([this] { timer.Start(); });
    ASSERT_TRUE(AwaitCalls(3));
    Run([this] { timer.Stop(); });
    int const called = calls;
    // A timer that expires after the next call would be due.
    std::promise<void> later;
    boost::asio::steady_timer pause(io.GetContext(), 5 * Interval);
    pause.async_wait([&](boost::system::error_code) { later.set_value(); });
    later.get_future().wait();
    EXPECT_EQ(calls, called);
}

} // namespace
} // namespace zarn::host::web
