#include "pool_test.h"
#include "support/asleep.h"
#include "support/eventually.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <atomic>
#include <cstdlib>
#include <iostream>
#include <stdexcept>
#include <system_error>
#include <thread>
#include <vector>

namespace zarn::job {
namespace {

using namespace std::chrono_literals;

TEST(DynamicThreadPoolStop, RefusesJobs) {
    DynamicThreadPool pool(1, 10s);
    pool.Stop();
    EXPECT_THROW(pool.Post([] {}), std::runtime_error);
    EXPECT_EQ(pool.GetThreadCount(), 0U);
}

TEST(DynamicThreadPoolStop, FinishesAcceptedJobs) {
    std::atomic<int> ran = 0;
    DynamicThreadPool pool(1, 10s);
    for (int count = 0; count < 100; ++count) pool.Post([&] { ++ran; });
    pool.Stop();
    EXPECT_EQ(ran, 100);
}

TEST(DynamicThreadPoolStop, WaitsForARunningJob) {
    DynamicThreadPool pool(1, 10s);
    Gate gate;
    std::atomic<bool> finished = false;
    pool.Post([&] {
        gate.Wait();
        finished = true;
    });
    ASSERT_TRUE(gate.WaitForWaiting(1));
    std::thread stopping([&] {
        pool.Stop();
        EXPECT_TRUE(finished);
    });
    EXPECT_TRUE(test::Eventually([&] {
        try {
            pool.Post([] {});
            return false;
        } catch (std::runtime_error const&) {
            return true; // Stop has begun
        }
    }));
    gate.Open();
    stopping.join();
}

TEST(DynamicThreadPoolStop, DoesNotWaitForIdleTimes) {
    auto const start = std::chrono::steady_clock::now();
    DynamicThreadPool pool(4, 3600s);
    pool.Post([] {});
    pool.Stop();
    EXPECT_LT(std::chrono::steady_clock::now() - start, Patience);
}

TEST(DynamicThreadPoolStop, IsHarmlessTwice) {
    DynamicThreadPool pool(2, 10s);
    pool.Stop();
    pool.Stop();
}

TEST(DynamicThreadPoolStop, IsHarmlessWhenCalledConcurrently) {
    DynamicThreadPool pool(2, 10s);
    std::atomic<int> ran = 0;
    for (int count = 0; count < 10; ++count) pool.Post([&] { ++ran; });
    std::vector<std::thread> threads;
    threads.reserve(4);
    for (int number = 0; number < 4; ++number) {
        threads.emplace_back([&] {
            pool.Stop();
            EXPECT_EQ(ran, 10);
            EXPECT_EQ(pool.GetThreadCount(), 0U);
        });
    }
    for (auto& thread : threads) thread.join();
}

TEST(DynamicThreadPoolStop, ThrowsInAJobOfThePool) {
    DynamicThreadPool pool(1, 10s);
    std::atomic<bool> refused = false;
    pool.Post([&] {
        try {
            pool.Stop();
        } catch (std::logic_error const&) {
            refused = true;
        }
    });
    pool.Stop();
    EXPECT_TRUE(refused);
}

TEST(DynamicThreadPoolStop, MayBeCalledByAJobOfAnotherPool) {
    DynamicThreadPool outer(1, 10s);
    DynamicThreadPool inner(1, 10s);
    outer.Post([&] { inner.Stop(); });
    outer.Stop();
    EXPECT_EQ(inner.GetThreadCount(), 0U);
}

TEST(DynamicThreadPoolStop, HappensInTheDestructor) {
    std::atomic<int> ran = 0;
    {
        DynamicThreadPool pool(0, 0s);
        for (int count = 0; count < 50; ++count) pool.Post([&] { ++ran; });
    }
    EXPECT_EQ(ran, 50);
}

TEST(DynamicThreadPoolStop, LosesNoJobAcceptedWhileStopping) {
    for (int round = 0; round < 20; ++round) {
        std::atomic<int> taken = 0;
        std::atomic<int> ran = 0;
        DynamicThreadPool pool(1, 0s);
        std::vector<std::thread> posting;
        posting.reserve(3);
        for (int number = 0; number < 3; ++number) {
            posting.emplace_back([&] {
                try {
                    for (int count = 0; count < 200; ++count) {
                        pool.Post([&] { ++ran; });
                        ++taken;
                    }
                } catch (std::runtime_error const&) {
                    return; // the pool has stopped
                }
            });
        }
        pool.Stop();
        for (auto& thread : posting) thread.join();
        EXPECT_EQ(ran, taken);
    }
}

#ifndef ZARN_SANITIZED // sanitizers need the address space that the test removes
/// Posts jobs until the address space is exhausted. Runs in a separate process.
[[noreturn]] void RunOutOfThreads() {
    DynamicThreadPool pool(1, 10s);
    auto const space = GetMemory().total + (std::size_t{64} << 20U); // for some thirty threads
    rlimit const limit{space, space};
    if (setrlimit(RLIMIT_AS, &limit) != 0) std::exit(2);
    Gate gate;
    std::atomic<int> ran = 0;
    int taken = 0;
    bool refused = false;
    while (!refused && taken < 10000) {
        // No job runs that would take the next one over.
        gate.WaitForWaiting(static_cast<std::size_t>(taken));
        test::OthersSleep(static_cast<std::size_t>(taken));
        try {
            pool.Post([&] {
                gate.WaitAsJob();
                ++ran;
            });
            ++taken;
        } catch (std::system_error const& error) {
            std::cerr << error.what() << '\n';
            refused = error.code() == std::errc::resource_unavailable_try_again;
        }
    }
    gate.Open();
    bool const idle = test::Eventually([&] { return ran == taken && pool.GetIdleCount() > 0; });
    pool.Post([&] { ++ran; });
    pool.Stop();
    std::exit(refused && idle && ran == taken + 1 ? 0 : 1);
}

TEST(DynamicThreadPoolDeathTest, RefusesAJobWithoutAThreadAndContinues) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(RunOutOfThreads(), testing::ExitedWithCode(0),
                "Failed to start a thread: Resource temporarily unavailable");
}
#endif

} // namespace
} // namespace zarn::job
