#include "support/asleep.h"

#include <zarn/asio/io_context.h>
#include <zarn/logging/capture.h>

#include <boost/asio/io_context.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/steady_timer.hpp>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <future>
#include <latch>
#include <memory>
#include <stdexcept>
#include <thread>

namespace zarn::asio {
namespace {

using namespace std::chrono_literals;

template <class Work>
void Post(IoContext& context, Work work) {
    boost::asio::post(context.Get(), std::move(work));
}

/// The thread that runs a handler.
std::thread::id RunOn(IoContext& context) {
    auto const id = std::make_shared<std::promise<std::thread::id>>(); // the handler outlives the arrival of its value
    Post(context, [id] { id->set_value(std::this_thread::get_id()); });
    return id->get_future().get();
}

TEST(IoContext, RunsHandlersOnAThreadOfItsOwn) {
    IoContext context(1);
    auto const first = RunOn(context);
    EXPECT_NE(first, std::this_thread::get_id());
    EXPECT_EQ(RunOn(context), first); // the thread waited for more work
}

TEST(IoContext, RunsOnAsManyThreadsAsAskedFor) {
    constexpr std::ptrdiff_t Count = 3;
    IoContext context(Count);
    auto const together = std::make_shared<std::latch>(Count + 1);
    for (int i = 0; i < Count; ++i) {
        Post(context, [together] { together->arrive_and_wait(); });
    }
    together->arrive_and_wait();
}

TEST(IoContext, RefusesToRunOnNoThread) { EXPECT_THROW(IoContext(0), std::invalid_argument); }

TEST(IoContext, LogsExceptionsOfHandlersAndContinues) {
    logging::Capture const capture;
    IoContext context(1);
    auto const thread = RunOn(context);
    Post(context, [] { throw std::runtime_error("out of paper"); });
    Post(context, [] { throw 5; });
    EXPECT_EQ(RunOn(context), thread);
    EXPECT_TRUE(capture.Contains("A handler threw: out of paper"));
    EXPECT_TRUE(capture.Contains("A handler threw: an exception of unknown type"));
    EXPECT_EQ(capture.GetLines().front().name, "zarn.asio.IoContext");
}

TEST(IoContext, WaitsForTheRunningHandlerWhenItStops) {
    std::promise<void> begun;
    std::promise<void> end;
    std::atomic<bool> finished = false;
    IoContext context(1);
    Post(context, [&] {
        begun.set_value();
        end.get_future().get();
        finished = true;
    });
    begun.get_future().get();
    std::promise<pid_t> stopping;
    std::thread stopper([&] {
        stopping.set_value(gettid());
        context.Stop();
        EXPECT_TRUE(finished);
    });
    EXPECT_TRUE(test::FallsAsleep(stopping.get_future().get())) << "the stop does not wait";
    end.set_value();
    stopper.join();
}

TEST(IoContext, RunsNothingOnceItHasStopped) {
    bool ran = false;
    IoContext context(2);
    context.Stop();
    context.Stop();
    Post(context, [&] { ran = true; });
    context.Stop();
    EXPECT_FALSE(ran);
}

TEST(IoContext, HasEndedOnceItsLastHandlerHasReturned) {
    IoContext context(2);
    std::promise<void> asked;
    auto const stopped = std::make_shared<std::promise<void>>();
    Post(context, [&context, stopped, future = asked.get_future().share()] {
        context.Stop();
        stopped->set_value();
        future.get();
    });
    stopped->get_future().get();
    EXPECT_FALSE(context.HasEnded());
    asked.set_value();
    EXPECT_TRUE(test::Eventually([&] { return context.HasEnded(); }));
}

TEST(IoContext, MayBeStoppedByAHandler) {
    IoContext context(1);
    auto const stopped = std::make_shared<std::promise<void>>();
    Post(context, [&context, stopped] {
        context.Stop();
        stopped->set_value();
    });
    stopped->get_future().get();
    context.Stop();
}

TEST(IoContext, MayBeStoppedBySeveralThreadsAtOnce) {
    IoContext context(2);
    auto other = std::async(std::launch::async, [&] { context.Stop(); });
    context.Stop();
    other.get();
}

TEST(IoContext, DestroysHandlersThatNeverRan) {
    auto const held = std::make_shared<int>();
    std::weak_ptr<int> const observed = held;
    {
        IoContext context(1);
        auto const timer = std::make_shared<boost::asio::steady_timer>(context.Get(), 1h);
        timer->async_wait([timer, held](boost::system::error_code const&) { FAIL(); });
        context.Stop();
    }
    EXPECT_EQ(observed.use_count(), 1);
}

} // namespace
} // namespace zarn::asio
