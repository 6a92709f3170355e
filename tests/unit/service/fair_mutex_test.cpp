#include "support/asleep.h"

#include <service/onvif/fair_mutex.h>

#include <gmock/gmock.h>

#include <future>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace zarn::service::onvif {
namespace {

using testing::ElementsAre;

TEST(FairMutex, IsGivenToThreadsInTheOrderInWhichTheyAsk) {
    FairMutex mutex;
    std::vector<int> order; // guarded by the mutex
    std::vector<std::jthread> threads;
    {
        std::scoped_lock const lock(mutex);
        for (int i = 0; i < 4; ++i) {
            std::promise<pid_t> started;
            threads.emplace_back([&, i] {
                started.set_value(gettid());
                std::scoped_lock const own(mutex);
                order.push_back(i);
            });
            ASSERT_TRUE(test::FallsAsleep(started.get_future().get()));
        }
    }
    std::scoped_lock const lock(mutex); // asks last, although it has just had it
    EXPECT_THAT(order, ElementsAre(0, 1, 2, 3));
}

TEST(FairMutex, IsHeldByOneThreadAtATime) {
    FairMutex mutex;
    int count = 0;
    {
        std::vector<std::jthread> threads;
        for (int i = 0; i < 3; ++i) {
            threads.emplace_back([&] {
                for (int n = 0; n < 1000; ++n) {
                    std::scoped_lock const lock(mutex);
                    ++count;
                }
            });
        }
    }
    EXPECT_EQ(count, 3000);
}

} // namespace
} // namespace zarn::service::onvif
