#include "pool_test.h"
#include "support/asleep.h"
#include "support/eventually.h"
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
    RunJob(pool); // although the first job has not ended
    gate.Open();
    pool.Stop();
}

TEST(ConditionVariable, NeverHoldsUpNewJobsHoweverManyWait) {
    DynamicThreadPool pool(1, 10s, 2);
    Gate gate;
    ASSERT_TRUE(LetWait(pool, gate, 200));
    RunJob(pool);
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
            RaiseTo(most, ++running);
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
    EXPECT_TRUE(Occupy(pool, busy));
    for (int count = 0; count < added; ++count) pool.Post([&] { order += 'N'; });
    event.Open(); // those that have waited enter the line
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
    ASSERT_TRUE(LetWait(pool, event) && Occupy(pool, busy));
    event.Open();                         // the first job wants a turn, which the second has
    EXPECT_TRUE(event.WaitForWaiting(1)); // takes the mutex
    busy.Open();
    pool.Stop();
}

TEST(ConditionVariable, LetsTheQueueIntoALineOfJobsThatSleepAgainAndAgain) {
    DynamicThreadPool pool(1, 10s, 1);
    std::mutex mutex;
    ConditionVariable changed;
    bool isOver = false;
    std::atomic<int> asleep = 0;
    for (int count = 0; count < 20; ++count) {
        pool.Post([&] {
            std::unique_lock lock(mutex);
            ++asleep;
            while (!isOver) {
                changed.WaitUntil(lock, std::chrono::steady_clock::time_point::max());
                if (!isOver) changed.NotifyAll(); // every one that goes on wakes all the others
            }
        });
    }
    ASSERT_TRUE(test::Eventually([&] { return asleep == 20; }));
    changed.NotifyAll();
    std::promise<void> ran;
    pool.Post([&] { ran.set_value(); });
    EXPECT_EQ(ran.get_future().wait_for(Patience), std::future_status::ready);
    {
        std::lock_guard const lock(mutex);
        isOver = true;
    }
    changed.NotifyAll();
    pool.Stop();
}

TEST(ConditionVariable, GetsATurnWhenAnotherJobsThreadCannotBeStarted) {
    DynamicThreadPool pool(0, 10s, 1);
    Gate event;
    std::atomic<int> ran = 0;
    pool.Post([&] {
        event.WaitAsJob();
        ++ran;
    });
    ASSERT_TRUE(event.WaitForWaiting(1) && test::OthersSleep(1));
    {
        test::ThreadFailure const failure([&] { event.Open(); }); // while the turn is taken for the new thread
        pool.Post([&] { ++ran; });                                // queues behind the job that goes on
    }
    EXPECT_TRUE(test::Eventually([&] { return ran == 2; }));
    pool.Stop();
}

TEST(ConditionVariable, LeavesTheQueueToAnotherJobWhenNoThreadCanBeStarted) {
    DynamicThreadPool pool(0, 10s, 2);
    Gate event;
    Gate first;
    Gate second;
    std::promise<void> ran;
    pool.Post([&] {
        first.Wait();
        test::ThreadFailure const failure;
        event.WaitAsJob();
    });
    ASSERT_TRUE(first.WaitForWaiting(1) && Occupy(pool, second));
    logging::Capture const log;
    pool.Post([&] { ran.set_value(); });
    first.Open();
    EXPECT_TRUE(log.WaitFor("Cannot start a thread for queued jobs", Patience)); // the first job sleeps
    second.Open();
    ran.get_future().get();
    event.Open();
    pool.Stop();
}

TEST(ConditionVariable, DropsTheQueueWhenNoThreadCanBeStartedAndNothingRuns) {
    logging::Capture const log;
    DynamicThreadPool pool(0, 10s, 1);
    Gate event;
    Gate begin;
    std::atomic<bool> ran = false;
    std::promise<End> ended;
    pool.Post([&] {
        begin.Wait();
        test::ThreadFailure const failure;
        event.WaitAsJob();
    });
    ASSERT_TRUE(begin.WaitForWaiting(1));
    {
        EndNotice const notice([&](End end) { ended.set_value(end); });
        pool.Post([&] { ran = true; });
    }
    begin.Open();
    EXPECT_EQ(ended.get_future().get(), End::Dropped);
    EXPECT_FALSE(ran);
    EXPECT_TRUE(log.Contains("Cannot start a thread for queued jobs: Failed to start a thread"));
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
