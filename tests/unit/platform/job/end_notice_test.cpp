#include <zarn/job/dynamic_thread_pool.h>
#include <zarn/job/end_notice.h>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <future>
#include <memory>
#include <stdexcept>

namespace zarn::job {
namespace {

using namespace std::chrono_literals;

TEST(EndNotice, IsCalledOnceForEachJob) {
    DynamicThreadPool pool(1, 10s);
    std::atomic<int> ended = 0;
    {
        EndNotice const notice([&](End) { ++ended; });
        for (int count = 0; count < 10; ++count) pool.Post([] {});
    }
    pool.Post([] {});
    pool.Stop();
    EXPECT_EQ(ended, 10);
}

TEST(EndNotice, IsCalledAfterTheJobHasBeenDestroyed) {
    DynamicThreadPool pool(1, 10s);
    auto promise = std::make_shared<std::promise<int>>();
    auto const future = promise->get_future().share();
    std::promise<bool> wasReady;
    EndNotice const notice([&](End) { wasReady.set_value(future.wait_for(0s) == std::future_status::ready); });
    pool.Post([promise = std::move(promise)] {}); // never sets it: only its end breaks the promise
    EXPECT_TRUE(wasReady.get_future().get());
    EXPECT_THROW(future.get(), std::future_error);
}

TEST(EndNotice, IsCalledForAJobThatThrows) {
    DynamicThreadPool pool(1, 10s);
    std::promise<void> ended;
    EndNotice const notice([&](End) { ended.set_value(); });
    pool.Post([] { throw std::runtime_error("no"); });
    ended.get_future().get();
}

TEST(EndNotice, HidesTheNoticeAroundIt) {
    DynamicThreadPool pool(1, 10s);
    std::atomic<int> outer = 0;
    std::atomic<int> inner = 0;
    EndNotice const around([&](End) { ++outer; });
    {
        EndNotice const within([&](End) { ++inner; });
        pool.Post([] {});
    }
    pool.Post([] {});
    pool.Stop();
    EXPECT_EQ(inner, 1);
    EXPECT_EQ(outer, 1);
}

TEST(EndNotice, ConcernsTheJobsOfItsOwnThreadOnly) {
    DynamicThreadPool pool(1, 10s);
    std::atomic<int> ended = 0;
    EndNotice const notice([&](End) { ++ended; });
    std::async(std::launch::async, [&] { pool.Post([] {}); }).get();
    pool.Post([&] { pool.Post([] {}); }); // the job within is posted by a thread of the pool
    pool.Stop();
    EXPECT_EQ(ended, 1);
}

} // namespace
} // namespace zarn::job
