#include "pool_test.h"
#include "support/asleep.h"
#include "support/thread_failure.h"

#include <zarn/job/condition_variable.h>
#include <zarn/job/end_notice.h>
#include <zarn/logging/capture.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <future>
#include <mutex>
#include <string>
#include <thread>

namespace zarn::job {
namespace {

using namespace std::chrono_literals;

TEST(ConditionVariable, LetsAnotherJobRunMeanwhile) {
    DynamicThreadPool pool(1, 10s, 1);
    Gate gate;
    pool.Post([&] { gate.WaitAsJob(); });
    std::promise<void> ran;
    pool.Post([&] { ran.set_value(); });
    ran.get_future().get(); // although the first job has not ended
    gate.Open();
    pool.Stop();
}

TEST(ConditionVariable, NeverHoldsUpNewJobsHoweverManyWait) {
    DynamicThreadPool pool(1, 10s, 2);
    Gate gate;
    for (int count = 0; count < 200; ++count) pool.Post([&] { gate.WaitAsJob(); });
    ASSERT_TRUE(gate.WaitForWaiting(200));
    std::promise<void> ran;
    pool.Post([&] { ran.set_value(); });
    ran.get_future().get();
    gate.Open();
    pool.Stop();
}

TEST(ConditionVariable, EndsOnlyWhenThereIsAProcessorForItsJob) {
    DynamicThreadPool pool(1, 10s, 2);
    Gate gate;
    std::atomic<int> running = 0;
    std::atomic<int> most = 0;
    std::atomic<int> ran = 0;
    for (int count = 0; count < 100; ++count) {
        pool.Post([&] {
            gate.WaitAsJob();
            most = std::max<int>(most, ++running);
            std::this_thread::yield();
            --running;
            ++ran;
        });
    }
    ASSERT_TRUE(gate.WaitForWaiting(100));
    gate.Open(); // all want to go on at once
    pool.Stop();
    EXPECT_EQ(ran, 100);
    EXPECT_LE(most, 2);
}

/// One processor, so that what runs is a list: W for each of many jobs that go on after they have waited, N for each
/// new one.
std::string GetOrderOfJobs(int waiting, int added) {
    DynamicThreadPool pool(1, 10s, 1);
    std::string order;
    Gate event;
    Gate busy;
    for (int count = 0; count < waiting; ++count) {
        pool.Post([&] {
            event.WaitAsJob();
            order += 'W';
        });
    }
    EXPECT_TRUE(event.WaitForWaiting(static_cast<std::size_t>(waiting)));
    pool.Post([&] { busy.Wait(); });
    EXPECT_TRUE(busy.WaitForWaiting(1));
    for (int count = 0; count < added; ++count) pool.Post([&] { order += 'N'; });
    event.Open();
    // Those that have waited have entered the line when their threads are asleep again.
    EXPECT_TRUE(test::OthersSleep(static_cast<std::size_t>(waiting) + 1));
    busy.Open();
    pool.Stop();
    return order;
}

TEST(ConditionVariable, TakesTurnsWithNewJobsWhenItEnds) {
    EXPECT_EQ(GetOrderOfJobs(5, 5), "WNWNWNWNWN");
    EXPECT_EQ(GetOrderOfJobs(6, 2), "WNWNWWWW") << "new jobs are not held up by many that have waited";
    EXPECT_EQ(GetOrderOfJobs(2, 6), "WNWNNNNN") << "nor the other way round";
}

TEST(ConditionVariable, WakesAJobAtItsDeadline) {
    DynamicThreadPool pool(1, 10s, 1);
    std::mutex mutex;
    ConditionVariable never;
    std::promise<std::chrono::steady_clock::time_point> woken;
    auto const deadline = std::chrono::steady_clock::now() + 20ms;
    pool.Post([&] {
        std::unique_lock lock(mutex);
        while (std::chrono::steady_clock::now() < deadline) never.WaitUntil(lock, deadline);
        EXPECT_TRUE(lock.owns_lock());
        woken.set_value(std::chrono::steady_clock::now());
    });
    EXPECT_GE(woken.get_future().get(), deadline);
}

TEST(ConditionVariable, LosesNoNotification) {
    DynamicThreadPool pool(1, 10s, 2);
    std::mutex mutex;
    ConditionVariable changed;
    int given = 0;
    int taken = 0;
    for (int count = 0; count < 4; ++count) {
        pool.Post([&] {
            std::unique_lock lock(mutex);
            for (int turns = 0; turns < 500; ++turns) {
                while (given == 0) changed.WaitUntil(lock, std::chrono::steady_clock::time_point::max());
                --given;
                ++taken;
            }
        });
    }
    for (int count = 0; count < 4 * 500; ++count) {
        {
            std::lock_guard const lock(mutex);
            ++given;
        }
        changed.NotifyAll();
    }
    pool.Stop();
    EXPECT_EQ(taken, 4 * 500);
}

TEST(ConditionVariable, ServesThreadsOfNoPoolAsWell) {
    std::mutex mutex;
    ConditionVariable changed;
    bool isOpen = false;
    std::promise<pid_t> started;
    auto waited = std::async(std::launch::async, [&] {
        started.set_value(gettid());
        std::unique_lock lock(mutex);
        while (!isOpen) changed.WaitUntil(lock, std::chrono::steady_clock::time_point::max());
    });
    EXPECT_TRUE(test::FallsAsleep(started.get_future().get()));
    {
        std::lock_guard const lock(mutex);
        isOpen = true;
    }
    changed.NotifyAll();
    waited.get();
}

TEST(ConditionVariable, NeverHoldsTheMutexWhileAJobWaitsForItsTurn) {
    DynamicThreadPool pool(1, 10s, 1);
    Gate event;
    Gate busy;
    pool.Post([&] { event.WaitAsJob(); });
    ASSERT_TRUE(event.WaitForWaiting(1));
    pool.Post([&] { busy.Wait(); });
    ASSERT_TRUE(busy.WaitForWaiting(1));
    event.Open();                         // the first job wants a turn, which the second has
    EXPECT_TRUE(event.WaitForWaiting(1)); // takes the mutex
    busy.Open();
    pool.Stop();
}

TEST(ConditionVariable, LeavesTheQueueToAnotherJobWhenNoThreadCanBeStarted) {
    DynamicThreadPool pool(2, 10s, 2);
    Gate event;
    Gate first;
    Gate second;
    std::promise<void> ran;
    pool.Post([&] {
        first.Wait();
        test::ThreadFailure const failure;
        event.WaitAsJob();
    });
    pool.Post([&] { second.Wait(); });
    ASSERT_TRUE(first.WaitForWaiting(1) && second.WaitForWaiting(1));
    pool.Post([&] { ran.set_value(); });
    first.Open();
    ASSERT_TRUE(event.WaitForWaiting(1));
    second.Open();
    ran.get_future().get();
    event.Open();
    pool.Stop();
}

TEST(ConditionVariable, DropsTheQueueWhenNoThreadCanBeStartedAndNothingRuns) {
    logging::Capture const log;
    DynamicThreadPool pool(1, 10s, 1);
    Gate event;
    Gate begin;
    std::atomic<bool> ran = false;
    std::promise<void> ended;
    pool.Post([&] {
        begin.Wait();
        test::ThreadFailure const failure;
        event.WaitAsJob();
    });
    ASSERT_TRUE(begin.WaitForWaiting(1));
    {
        EndNotice const notice([&] { ended.set_value(); });
        pool.Post([&] { ran = true; });
    }
    begin.Open();
    ended.get_future().get();
    EXPECT_FALSE(ran);
    EXPECT_TRUE(log.Contains("No thread for jobs that queue: Failed to start a thread"));
    event.Open();
    pool.Stop();
}

TEST(ConditionVariable, LetsThePoolStopWhenItsWaitEnds) {
    DynamicThreadPool pool(1, 10s, 1);
    Gate gate;
    std::atomic<int> ran = 0;
    for (int count = 0; count < 10; ++count) {
        pool.Post([&] {
            gate.WaitAsJob();
            ++ran;
        });
    }
    pool.Post([&] { ++ran; });
    auto stopped = std::async(std::launch::async, [&] { pool.Stop(); });
    EXPECT_TRUE(gate.WaitForWaiting(10)) << "jobs in the queue run although the pool stops";
    gate.Open();
    stopped.get();
    EXPECT_EQ(ran, 11);
}

} // namespace
} // namespace zarn::job
