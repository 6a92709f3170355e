#include "pool_test.h"
#include "support/eventually.h"
#include "support/thread_failure.h"

#include <zarn/logging/capture.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/prctl.h>

#include <algorithm>
#include <atomic>
#include <future>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace zarn::job {
namespace {

using namespace std::chrono_literals;

TEST(DynamicThreadPool, RunsAJobOnAThreadOfItsOwn) {
    DynamicThreadPool pool(1, 10s);
    std::promise<std::thread::id> ran;
    pool.Post([&] { ran.set_value(std::this_thread::get_id()); });
    EXPECT_NE(ran.get_future().get(), std::this_thread::get_id());
}

TEST(DynamicThreadPool, StartsItsMinimumAtOnce) {
    DynamicThreadPool const pool(3, 0s);
    EXPECT_EQ(pool.GetThreadCount(), 3U);
    EXPECT_TRUE(test::Eventually([&] { return pool.GetIdleCount() == 3; }));
}

TEST(DynamicThreadPool, MayHaveNoMinimum) {
    DynamicThreadPool pool(0, 0s);
    EXPECT_EQ(pool.GetThreadCount(), 0U);
    RunJob(pool);
    EXPECT_TRUE(test::Eventually([&] { return pool.GetThreadCount() == 0; }));
}

TEST(DynamicThreadPool, GivesAJobToAnIdleThread) {
    DynamicThreadPool pool(1, 10s);
    for (int count = 0; count < 10; ++count) {
        ASSERT_TRUE(test::Eventually([&] { return pool.GetIdleCount() == 1; }));
        pool.Post([] {});
        EXPECT_EQ(pool.GetThreadCount(), 1U);
    }
}

TEST(DynamicThreadPool, StartsAThreadForEachWaitingJob) {
    DynamicThreadPool pool(1, 10s);
    Gate gate;
    EXPECT_TRUE(LetWait(pool, gate, 20)); // all jobs run concurrently
    EXPECT_GE(pool.GetThreadCount(), 20U);
    gate.Open();
    pool.Stop(); // before the gate is destroyed
}

TEST(DynamicThreadPool, EndsThreadsAboveTheMinimum) {
    DynamicThreadPool pool(2, 0s);
    Gate gate;
    ASSERT_TRUE(LetWait(pool, gate, 8));
    gate.Open();
    EXPECT_TRUE(test::Eventually([&] { return pool.GetThreadCount() == 2 && pool.GetIdleCount() == 2; }));
}

TEST(DynamicThreadPool, KeepsAnIdleThreadForTheGivenTime) {
    DynamicThreadPool pool(0, 1s);
    auto const start = std::chrono::steady_clock::now();
    pool.Post([] {});
    EXPECT_TRUE(test::Eventually([&] { return pool.GetThreadCount() == 0; }));
    EXPECT_GE(std::chrono::steady_clock::now() - start, 1s);
}

TEST(DynamicThreadPool, AcceptsTheMaximumIdleTime) {
    DynamicThreadPool pool(0, std::chrono::seconds::max());
    pool.Post([] {});
    EXPECT_TRUE(test::Eventually([&] { return pool.GetIdleCount() == 1; }));
}

TEST(DynamicThreadPool, TreatsANegativeIdleTimeAsZero) {
    DynamicThreadPool pool(0, -5s);
    pool.Post([] {});
    EXPECT_TRUE(test::Eventually([&] { return pool.GetThreadCount() == 0; }));
}

TEST(DynamicThreadPool, PrefersTheThreadThatBecameIdleLast) {
    DynamicThreadPool pool(2, 10s, 2);
    ASSERT_TRUE(test::Eventually([&] { return pool.GetIdleCount() == 2; }));
    Gate first;
    Gate second;
    std::thread::id last;
    pool.Post([&] { first.Wait(); });
    pool.Post([&] {
        second.Wait();
        last = std::this_thread::get_id();
    });
    ASSERT_TRUE(first.WaitForWaiting(1) && second.WaitForWaiting(1));
    first.Open();
    ASSERT_TRUE(test::Eventually([&] { return pool.GetIdleCount() == 1; }));
    second.Open();
    ASSERT_TRUE(test::Eventually([&] { return pool.GetIdleCount() == 2; }));
    std::promise<std::thread::id> ran;
    pool.Post([&] { ran.set_value(std::this_thread::get_id()); });
    EXPECT_EQ(ran.get_future().get(), last);
}

TEST(DynamicThreadPool, DestroysAJobOnItsThreadBeforeBecomingIdle) {
    DynamicThreadPool pool(1, 10s);
    ASSERT_TRUE(test::Eventually([&] { return pool.GetIdleCount() == 1; }));
    std::thread::id ran;
    std::thread::id destroyed;
    std::size_t idle = 1;
    {
        std::shared_ptr<void> owned(nullptr, [&](void*) {
            destroyed = std::this_thread::get_id();
            idle = pool.GetIdleCount();
        });
        pool.Post([&, owned = std::move(owned)] { ran = std::this_thread::get_id(); });
    }
    ASSERT_TRUE(test::Eventually([&] { return pool.GetIdleCount() == 1; }));
    EXPECT_EQ(destroyed, ran);
    EXPECT_EQ(idle, 0U);
}

TEST(DynamicThreadPool, LogsAnExceptionOfAJobAndContinues) {
    logging::Capture const capture;
    DynamicThreadPool pool(1, 10s);
    pool.Post([] { throw std::runtime_error("no\nway"); });
    EXPECT_TRUE(capture.WaitFor("A job threw: no\\nway", Patience));
    RunJob(pool);
}

TEST(DynamicThreadPool, LogsANonStandardExceptionOfAJob) {
    logging::Capture const capture;
    DynamicThreadPool pool(1, 10s);
    pool.Post([] { throw 42; }); // NOLINT: intentionally not a std::exception
    EXPECT_TRUE(capture.WaitFor("A job threw: an exception of unknown type", Patience));
}

TEST(DynamicThreadPool, LimitsTheRateOfLoggedExceptions) {
    logging::Capture const capture;
    DynamicThreadPool pool(1, 10s);
    for (int count = 0; count < 50; ++count) pool.Post([] { throw std::runtime_error("again"); });
    pool.Stop();
    EXPECT_LT(capture.GetLines().size(), 50U);
    EXPECT_GE(capture.GetLines().size(), 1U);
}

TEST(DynamicThreadPool, DestroysAJobThatThrew) {
    DynamicThreadPool pool(1, 10s);
    auto promise = std::make_shared<std::promise<void>>();
    auto future = promise->get_future();
    pool.Post([promise = std::move(promise)] { throw std::runtime_error("broken"); });
    EXPECT_THROW(future.get(), std::future_error);
}

TEST(DynamicThreadPool, AllowsAJobToPostAnother) {
    DynamicThreadPool pool(1, 10s);
    std::promise<void> ran;
    pool.Post([&] { pool.Post([&] { ran.set_value(); }); });
    ran.get_future().get();
}

TEST(DynamicThreadPool, RefusesAnEmptyJob) {
    DynamicThreadPool pool(1, 10s);
    EXPECT_THROW(pool.Post(nullptr), std::invalid_argument);
    EXPECT_EQ(pool.GetThreadCount(), 1U);
}

TEST(DynamicThreadPool, GivesEveryThreadAStackOfTheSameSize) {
    DynamicThreadPool pool(0, 0s);
    std::promise<std::size_t> size;
    pool.Post([&] { size.set_value(GetStackSizeOfThisThread()); });
#ifdef ZARN_SANITIZED
    EXPECT_EQ(size.get_future().get(), std::size_t{16} << 20U);
#else
    EXPECT_EQ(size.get_future().get(), std::size_t{2} << 20U);
#endif
}

TEST(DynamicThreadPool, KeepsAThousandWaitingJobsCheap) {
    DynamicThreadPool pool(1, 0s);
    Gate gate;
    prctl(PR_SET_THP_DISABLE, 1, 0, 0, 0); // keeps the kernel from giving each stack a 2 MiB page
    auto const before = GetMemory().resident;
    ASSERT_TRUE(LetWait(pool, gate, 1000));
    auto const each = (GetMemory().resident - before) / 1000;
    gate.Open();
    EXPECT_TRUE(test::Eventually([&] { return pool.GetThreadCount() == 1; }));
#ifndef ZARN_SANITIZED
    EXPECT_LT(each, 32U * 1024); // sanitizers allocate memory for every thread
#else
    static_cast<void>(each);
#endif
}

TEST(DynamicThreadPool, RunsNoMoreJobsAtATimeThanThereAreProcessors) {
    DynamicThreadPool pool(1, 10s, 3);
    std::atomic<int> running = 0;
    std::atomic<int> most = 0;
    std::atomic<int> ran = 0;
    for (int count = 0; count < 300; ++count) {
        pool.Post([&] {
            RaiseTo(most, ++running);
            std::this_thread::yield();
            --running;
            ++ran;
        });
    }
    pool.Stop();
    EXPECT_EQ(ran, 300);
    EXPECT_LE(most, 3);
}

TEST(DynamicThreadPool, StartsNoMoreThreadsThanThereAreProcessorsForJobsThatOnlyCompute) {
    DynamicThreadPool pool(0, 10s, 2);
    Gate gate;
    std::atomic<int> ran = 0;
    pool.Post([&] { gate.Wait(); });
    pool.Post([&] { gate.Wait(); });
    for (int count = 0; count < 50; ++count) pool.Post([&] { ++ran; });
    ASSERT_TRUE(gate.WaitForWaiting(2));
    EXPECT_EQ(pool.GetThreadCount(), 2U);
    EXPECT_EQ(ran, 0);
    gate.Open();
    pool.Stop();
    EXPECT_EQ(ran, 50);
}

TEST(DynamicThreadPool, TreatsNoProcessorsAsOne) {
    DynamicThreadPool pool(0, 10s, 0);
    RunJob(pool);
}

TEST(DynamicThreadPool, RunsJobsInTheirOrder) {
    DynamicThreadPool pool(1, 10s, 1);
    std::vector<int> order;
    for (int number = 0; number < 100; ++number) pool.Post([&order, number] { order.push_back(number); });
    pool.Stop();
    EXPECT_TRUE(std::ranges::is_sorted(order));
    EXPECT_EQ(order.size(), 100U);
}

TEST(DynamicThreadPool, QueuesAJobBehindARunningOneWhenNoThreadCanBeStarted) {
    DynamicThreadPool pool(0, 10s, 2);
    Gate gate;
    std::promise<void> ran;
    bool hasFailed = false;
    ASSERT_TRUE(Occupy(pool, gate));
    {
        test::ThreadFailure const failure([&] { hasFailed = true; });
        pool.Post([&] { ran.set_value(); });
    }
    EXPECT_TRUE(hasFailed);
    gate.Open();
    ran.get_future().get();
    pool.Stop();
}

TEST(DynamicThreadPool, WakesNoThreadWhileIdle) {
    DynamicThreadPool pool(4, 10s);
    ASSERT_TRUE(test::Eventually([&] { return pool.GetIdleCount() == 4; }));
    // Retries, because a thread that has just become idle may not be asleep yet.
    EXPECT_TRUE(test::Eventually([] {
        auto const before = GetContextSwitchesOfPoolThreads();
        std::this_thread::sleep_for(200ms);
        return GetContextSwitchesOfPoolThreads() == before;
    }));
}

} // namespace
} // namespace zarn::job
