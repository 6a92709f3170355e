#include "support/asleep.h"

#include <zarn/asio/global_context.h>
#include <zarn/logging/capture.h>

#include <boost/asio/io_context.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/system_timer.hpp>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <future>
#include <optional>
#include <stdexcept>
#include <thread>
#include <vector>

namespace zarn::asio {
namespace {

using namespace std::chrono_literals;

/// Runs a function on the context's thread, waits for it and returns its result.
template <class Function>
auto Ask(GlobalContext const& handle, Function function) {
    std::packaged_task<decltype(function())()> task(std::move(function));
    auto result = task.get_future();
    boost::asio::post(handle.Get(), std::move(task));
    return result.get();
}

/// Detects the end of the context's thread by the destruction of a thread-local object.
class ThreadEnd {
public:
    explicit ThreadEnd(GlobalContext const& handle) {
        Ask(handle, [flag = ended] {
            thread_local Mark mark;
            mark.flag = flag;
        });
    }

    bool HasCome() const { return *ended; }

private:
    struct Mark {
        std::shared_ptr<std::atomic<bool>> flag;

        ~Mark() { *flag = true; }
    };

    std::shared_ptr<std::atomic<bool>> ended = std::make_shared<std::atomic<bool>>(false);
};

/// Makes a handler the owner of the last handle. The handler waits until the handle used to post it is destroyed, then
/// releases its own and calls `then`.
///
/// prepare  called with the handle before the handler is posted
template <class Prepare, class Then>
void LetGoOnItsThread(Prepare prepare, Then then) {
    std::promise<void> alone;
    {
        GlobalContext const handle;
        prepare(handle);
        auto const last = std::make_shared<std::optional<GlobalContext>>(handle);
        boost::asio::post(handle.Get(), [last, then, waited = alone.get_future().share()] {
            waited.get();
            last->reset();
            then();
        });
    }
    alone.set_value();
}

TEST(GlobalContext, RunsHandlersOnOneThreadOfItsOwn) {
    GlobalContext const handle;
    auto const thread = Ask(handle, [] { return std::this_thread::get_id(); });
    EXPECT_NE(thread, std::this_thread::get_id());
    EXPECT_EQ(Ask(handle, [] { return std::this_thread::get_id(); }), thread);
}

TEST(GlobalContext, IsSharedByAllHandles) {
    GlobalContext const first;
    GlobalContext const second;
    GlobalContext const copy(first);
    EXPECT_EQ(&first.Get(), &second.Get());
    EXPECT_EQ(&first.Get(), &copy.Get());
}

TEST(GlobalContext, RunsTimersOnTheSystemClock) {
    GlobalContext const handle;
    boost::asio::system_timer timer(handle.Get(), 1ms);
    std::promise<boost::system::error_code> expired;
    timer.async_wait([&](boost::system::error_code error) { expired.set_value(error); });
    EXPECT_FALSE(expired.get_future().get());
}

TEST(GlobalContext, RunsATimerAtTheEndsOfTheClock) {
    std::promise<void> expired;
    std::atomic<bool> lastExpired = false;
    GlobalContext const handle;
    boost::asio::system_timer last(handle.Get(), std::chrono::system_clock::time_point::max());
    boost::asio::system_timer first(handle.Get(), std::chrono::system_clock::time_point::min());
    last.async_wait([&](boost::system::error_code error) { lastExpired = !error; });
    first.async_wait([&](boost::system::error_code) { expired.set_value(); });
    expired.get_future().get();
    EXPECT_FALSE(lastExpired);
}

TEST(GlobalContext, EndsItsThreadWithTheLastHandle) {
    std::optional<GlobalContext> first(std::in_place);
    std::optional<GlobalContext> second(*first);
    ThreadEnd const end(*first);
    first.reset();
    EXPECT_FALSE(end.HasCome());
    Ask(*second, [] {});
    second.reset();
    EXPECT_TRUE(end.HasCome());
}

TEST(GlobalContext, ReleasesItsContextWhenAssignedTo) {
    std::optional<GlobalContext> first(std::in_place);
    GlobalContext second;
    second = *first;
    first.reset();
    EXPECT_EQ(Ask(second, [] { return 1; }), 1);
}

TEST(GlobalContext, RestartsAfterItEnds) {
    for (int round = 0; round < 3; ++round) {
        GlobalContext const handle;
        EXPECT_EQ(Ask(handle, [] { return 1; }), 1);
    }
}

TEST(GlobalContext, DestroysPendingHandlersWithoutRunningThem) {
    auto const held = std::make_shared<std::atomic<bool>>(false);
    {
        GlobalContext const handle;
        boost::asio::system_timer timer(handle.Get(), 1h);
        timer.async_wait([held](boost::system::error_code) { *held = true; });
        boost::asio::post(handle.Get(), [main = gettid()] { test::FallsAsleep(main); }); // main waits for this handler
    }
    EXPECT_EQ(held.use_count(), 1);
    EXPECT_FALSE(*held);
}

TEST(GlobalContext, WaitsForARunningHandler) {
    std::atomic<bool> running = false;
    std::atomic<bool> ended = false;
    {
        GlobalContext const handle;
        boost::asio::post(handle.Get(), [&, main = gettid()] {
            running = true;
            EXPECT_TRUE(test::FallsAsleep(main)) << "the destructor does not wait";
            ended = true;
        });
        while (!running) std::this_thread::yield();
    }
    EXPECT_TRUE(ended);
}

TEST(GlobalContext, EndsWhenItsThreadReleasesTheLastHandle) {
    std::optional<ThreadEnd> end;
    auto const held = std::make_shared<std::atomic<bool>>(false);
    LetGoOnItsThread(
        [&](GlobalContext const& handle) {
            end.emplace(handle);
            auto const timer = std::make_shared<boost::asio::system_timer>(handle.Get(), 1h);
            timer->async_wait([held, timer](boost::system::error_code) { *held = true; });
        },
        [] {});
    EXPECT_TRUE(test::Eventually([&] { return end->HasCome(); }));
    GlobalContext const next; // destroys the former context
    EXPECT_EQ(held.use_count(), 1);
    EXPECT_FALSE(*held);
}

TEST(GlobalContext, RestartsWithinTheHandlerThatEndedIt) {
    std::optional<ThreadEnd> end;
    std::promise<GlobalContext> made;
    LetGoOnItsThread([&](GlobalContext const& handle) { end.emplace(handle); },
                     [&made] {
                         GlobalContext const anew;
                         Ask(anew, [] {});
                         made.set_value(anew);
                     });
    auto const anew = made.get_future().get();
    EXPECT_TRUE(test::Eventually([&] { return end->HasCome(); }));
    EXPECT_EQ(Ask(anew, [] { return 1; }), 1);
}

TEST(GlobalContext, RestartsWithoutWaitingForTheThreadThatEndedIt) {
    std::promise<void> alone;
    std::promise<void> made;
    auto const ended = std::make_shared<std::promise<void>>();
    LetGoOnItsThread([](GlobalContext const&) {},
                     [&alone, ended, future = made.get_future().share()] {
                         alone.set_value();
                         future.get();
                         ended->set_value();
                     });
    alone.get_future().get();
    {
        GlobalContext const next;
        EXPECT_EQ(Ask(next, [] { return 1; }), 1);
    }
    made.set_value();
    ended->get_future().get();
}

TEST(GlobalContext, LogsExceptionsOfHandlersAndContinues) {
    logging::Capture const capture;
    GlobalContext const handle;
    boost::asio::post(handle.Get(), [] { throw std::runtime_error("broken"); });
    boost::asio::post(handle.Get(), [] { throw 1; });
    EXPECT_EQ(Ask(handle, [] { return 1; }), 1);
    EXPECT_TRUE(capture.Contains("A handler threw: broken"));
    EXPECT_TRUE(capture.Contains("A handler threw: an exception of unknown type"));
}

TEST(GlobalContext, StartsAndEndsConcurrentlyInManyThreads) {
    std::atomic<int> ran = 0;
    std::vector<std::thread> threads;
    for (int count = 0; count < 4; ++count) {
        threads.emplace_back([&ran] {
            for (int round = 0; round < 2000; ++round) {
                GlobalContext const handle;
                GlobalContext const copy(handle);
                boost::asio::system_timer timer(copy.Get(), 1h);
                timer.async_wait([](boost::system::error_code) {});
                if (round % 4 == 0) ran += Ask(handle, [] { return 1; });
            }
        });
    }
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(ran, 4 * 500);
}

TEST(GlobalContext, EndsOnItsThreadDuringConcurrentStarts) {
    std::vector<std::thread> threads;
    std::atomic<int> ran = 0;
    for (int count = 0; count < 4; ++count) {
        threads.emplace_back([&ran] {
            for (int round = 0; round < 1000; ++round) {
                LetGoOnItsThread([](GlobalContext const&) {}, [&ran] { ++ran; });
            }
        });
    }
    for (auto& thread : threads) thread.join();
    EXPECT_TRUE(test::Eventually([&] { return ran == 4 * 1000; }));
}

class GlobalContextAtExit : public testing::Test {
protected:
    GlobalContextAtExit() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

TEST_F(GlobalContextAtExit, EndsWithAStaticHandle) {
    EXPECT_EXIT(
        {
            static GlobalContext const handle;
            static boost::asio::system_timer timer(handle.Get(), 1h);
            timer.async_wait([](boost::system::error_code) {});
            std::exit(3); // NOLINT(concurrency-mt-unsafe)
        },
        testing::ExitedWithCode(3), "");
}

TEST_F(GlobalContextAtExit, WaitsForAThreadThatReleasesItself) {
    EXPECT_EXIT(
        {
            std::atomic<bool> running = false;
            LetGoOnItsThread([](GlobalContext const&) {},
                             [&running, main = gettid()] {
                                 running = true;
                                 test::FallsAsleep(main);
                                 std::fputs("handler ended", stderr);
                             });
            while (!running) std::this_thread::yield();
            std::exit(3); // NOLINT(concurrency-mt-unsafe)
        },
        testing::ExitedWithCode(3), "handler ended");
}

TEST_F(GlobalContextAtExit, EndsWhenAHandlerCallsExit) {
    EXPECT_EXIT(
        {
            static GlobalContext const handle;
            boost::asio::post(handle.Get(), [] { std::exit(3); }); // NOLINT(concurrency-mt-unsafe)
            std::this_thread::sleep_for(60s);
        },
        testing::ExitedWithCode(3), "");
}

} // namespace
} // namespace zarn::asio
