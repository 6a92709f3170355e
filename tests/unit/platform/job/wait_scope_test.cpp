#include "pool_test.h"
#include "support/asleep.h"

#include <zarn/job/wait_scope.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <future>
#include <string>
#include <thread>

namespace zarn::job {
namespace {

using namespace std::chrono_literals;

TEST(WaitScope, LetsAnotherJobRunMeanwhile) {
    DynamicThreadPool pool(1, 10s, 1);
    Gate gate;
    pool.Post([&] { gate.WaitInScope(); });
    std::promise<void> ran;
    pool.Post([&] { ran.set_value(); });
    ran.get_future().get(); // although the first job has not ended
    gate.Open();
    pool.Stop();
}

TEST(WaitScope, NeverHoldsUpNewJobsHoweverManyWait) {
    DynamicThreadPool pool(1, 10s, 2);
    Gate gate;
    for (int count = 0; count < 200; ++count) pool.Post([&] { gate.WaitInScope(); });
    ASSERT_TRUE(gate.WaitForWaiting(200));
    std::promise<void> ran;
    pool.Post([&] { ran.set_value(); });
    ran.get_future().get();
    gate.Open();
    pool.Stop();
}

TEST(WaitScope, EndsOnlyWhenThereIsAProcessorForItsJob) {
    DynamicThreadPool pool(1, 10s, 2);
    Gate gate;
    std::atomic<int> running = 0;
    std::atomic<int> most = 0;
    std::atomic<int> ran = 0;
    for (int count = 0; count < 100; ++count) {
        pool.Post([&] {
            gate.WaitInScope();
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
            event.WaitInScope();
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

TEST(WaitScope, TakesTurnsWithNewJobsWhenItEnds) {
    EXPECT_EQ(GetOrderOfJobs(5, 5), "WNWNWNWNWN");
    EXPECT_EQ(GetOrderOfJobs(6, 2), "WNWNWWWW") << "new jobs are not held up by many that have waited";
    EXPECT_EQ(GetOrderOfJobs(2, 6), "WNWNNNNN") << "nor the other way round";
}

TEST(WaitScope, DoesNothingWithinAnother) {
    DynamicThreadPool pool(1, 10s, 1);
    std::atomic<int> running = 0;
    std::atomic<int> most = 0;
    for (int count = 0; count < 20; ++count) {
        pool.Post([&] {
            {
                WaitScope const outer;
                WaitScope const inner;
            }
            most = std::max<int>(most, ++running);
            std::this_thread::yield();
            --running;
        });
    }
    pool.Stop();
    EXPECT_EQ(most, 1);
}

TEST(WaitScope, DoesNothingOnAThreadOfNoPool) {
    WaitScope const scope;
    DynamicThreadPool pool(1, 10s, 1);
    std::promise<void> ran;
    pool.Post([&] { ran.set_value(); });
    ran.get_future().get();
}

TEST(WaitScope, LetsThePoolStopWhenItsWaitEnds) {
    DynamicThreadPool pool(1, 10s, 1);
    Gate gate;
    std::atomic<int> ran = 0;
    for (int count = 0; count < 10; ++count) {
        pool.Post([&] {
            gate.WaitInScope();
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
