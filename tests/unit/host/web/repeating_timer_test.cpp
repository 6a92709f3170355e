#include "host/web/repeating_timer.h"
#include "web/io_thread.h"

#include <zarn/logging/capture.h>

#include <boost/asio/post.hpp>
#include <gtest/gtest.h>

#include <atomic>
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
        auto const deadline = std::chrono::steady_clock::now() + 5s;
        while (calls < count && std::chrono::steady_clock::now() < deadline) std::this_thread::yield();
        return calls >= count;
    }

    logging::Capture log;
    std::atomic<int> calls = 0;
    IoThread io;
    RepeatingTimer timer{io.GetContext().get_executor(), 1ms, "The work was not done", [this] {
                             if (++calls <= 2) throw std::runtime_error("no memory");
                         }};
};

TEST_F(RepeatingTimerTest, CallsAgainWhateverIsThrown) {
    Run([this] { timer.Start(); });
    EXPECT_TRUE(AwaitCalls(5));
    EXPECT_TRUE(log.Contains("The work was not done: no memory"));
}

TEST_F(RepeatingTimerTest, CallsNoMoreOnceItIsStopped) {
    Run([this] { timer.Start(); });
    ASSERT_TRUE(AwaitCalls(3));
    Run([this] { timer.Stop(); });
    int const called = calls;
    std::this_thread::sleep_for(20ms);
    EXPECT_EQ(calls, called);
}

} // namespace
} // namespace zarn::host::web
