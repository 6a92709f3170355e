#include "support/asleep.h"

#include <service/onvif/subscription.h>
#include <zarn/meta/data/event.h>
#include <zarn/onvif/events/handler.h>
#include <zarn/onvif/events/subscription_gauge.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <future>
#include <map>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace zarn::service::onvif {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using Clock = std::chrono::steady_clock;

constexpr auto Soon = 60s; // only a failing test waits this long

Subscription::Time Now() { return std::chrono::system_clock::now(); }

bool Never() { return false; }

class SubscriptionTest : public testing::Test {
protected:
    SubscriptionTest() { Subscription::RegisterForEvents(); }

    ~SubscriptionTest() override { Subscription::End(id); }

    static void Publish(std::string const& name) {
        zarn::onvif::events::Publish(std::make_shared<meta::data::Event>("count", name, Now()));
    }

    static std::vector<std::string> GetNames(std::vector<EventPtr> const& events) {
        std::vector<std::string> names;
        for (auto const& event : events) names.push_back(event->GetName());
        return names;
    }

    std::int32_t const id = Subscription::Create(Now() + 1h, {});
    std::shared_ptr<Subscription> const subscription = Subscription::Find(id);
};

TEST_F(SubscriptionTest, ReturnsEventsInOrder) {
    Publish("first");
    Publish("second");
    EXPECT_EQ(subscription->Pop()->GetName(), "first");
    EXPECT_EQ(subscription->Pop()->GetName(), "second");
    EXPECT_EQ(subscription->Pop(), nullptr);
}

TEST_F(SubscriptionTest, ReturnsAsManyEventsAsAreWantedAtOnce) {
    for (auto const* name : {"first", "second", "third"}) Publish(name);
    EXPECT_THAT(GetNames(subscription->Take(0)), IsEmpty());
    EXPECT_THAT(GetNames(subscription->Take(2)), ElementsAre("first", "second"));
    EXPECT_THAT(GetNames(subscription->Take(2)), ElementsAre("third"));
    EXPECT_THAT(GetNames(subscription->Take(2)), IsEmpty());
}

TEST_F(SubscriptionTest, ReportsWhatIsLeftInTheQueue) {
    auto const getQueued = [this] {
        auto const all = zarn::onvif::events::GetSubscriptions();
        return std::ranges::find(all, id, &zarn::onvif::events::SubscriptionStatus::id)->queued;
    };
    for (auto const* name : {"first", "second", "third"}) Publish(name);
    subscription->Take(2);
    EXPECT_EQ(getQueued(), 1U);
    subscription->Take(2);
    EXPECT_EQ(getQueued(), 0U);
}

TEST_F(SubscriptionTest, ReturnsTheEventsOfSeveralThreadsInTheOrderOfEveryOtherSubscription) {
    constexpr std::size_t Count = 2000;
    std::vector<std::int32_t> ids;
    for (int i = 0; i < 8; ++i) ids.push_back(Subscription::Create(Now() + 1h, {}));
    {
        std::vector<std::jthread> publishers;
        for (std::string const publisher : {"a", "b", "c"}) {
            publishers.emplace_back([publisher] {
                for (std::size_t i = 0; i < Count; ++i) Publish(publisher + std::to_string(i));
            });
        }
    }
    auto const names = GetNames(subscription->Take(4 * Count));
    ASSERT_EQ(names.size(), 3 * Count);
    std::map<char, std::size_t> next;
    for (auto const& name : names) EXPECT_EQ(name.substr(1), std::to_string(next[name[0]]++));
    for (auto const other : ids) {
        EXPECT_EQ(GetNames(Subscription::Find(other)->Take(4 * Count)), names);
        Subscription::End(other);
    }
}

TEST_F(SubscriptionTest, DoesNotWaitForAnotherOneNorForAPublisherThatDoes) {
    std::promise<void> locked;
    std::promise<void> end;
    auto waiting = std::async(std::launch::async, [&] {
        return subscription->WaitForEvents(
            Clock::now() + Soon,
            [&] { // under the lock of this subscription
                locked.set_value();
                end.get_future().wait();
                return true;
            },
            nullptr);
    });
    locked.get_future().wait();
    std::promise<pid_t> publishing;
    std::jthread const publisher([&] {
        publishing.set_value(gettid());
        Publish("one");
    });
    EXPECT_TRUE(test::FallsAsleep(publishing.get_future().get())) << "the publisher does not wait";
    auto const otherId = Subscription::Create(Now() + 1h, {});
    auto const other = Subscription::Find(otherId);
    EXPECT_EQ(Subscription::Find(id), subscription);
    EXPECT_EQ(other->Pop(), nullptr);
    EXPECT_TRUE(other->Renew(Now() + 2h));
    EXPECT_GT(other->GetTermination(), Now() + 1h);
    Subscription::End(otherId);
    EXPECT_EQ(waiting.wait_for(0s), std::future_status::timeout);
    end.set_value();
    EXPECT_TRUE(waiting.get());
}

TEST_F(SubscriptionTest, ReturnsNoEventsAfterItEndsDuringADelivery) {
    Publish("first");
    Publish("second");
    EXPECT_EQ(subscription->Pop()->GetName(), "first");
    ASSERT_TRUE(subscription->Renew(Now() - 1h));
    while (Subscription::Find(id)) std::this_thread::yield();
    EXPECT_EQ(subscription->Pop(), nullptr);
    EXPECT_FALSE(subscription->HasEvents());
    EXPECT_FALSE(subscription->WaitForEvents(Clock::now() + Soon, Never, nullptr));
    EXPECT_FALSE(subscription->Renew(Now() + 1h));
}

TEST_F(SubscriptionTest, ReleasesItsEventsWhenItEnds) {
    auto event = std::make_shared<meta::data::Event>("count", "rule", Now());
    std::weak_ptr<meta::data::Event> const kept = event;
    zarn::onvif::events::Publish(std::move(event));
    auto const keepers = kept.use_count(); // other subscriptions of this process among them
    Subscription::End(id);
    EXPECT_EQ(kept.use_count(), keepers - 1);
}

TEST_F(SubscriptionTest, WakesOnlyItsOwnWaitsWhenItEnds) {
    std::atomic<int> checks = 0;
    auto waiting = std::async(std::launch::async, [&] {
        return subscription->WaitForEvents(
            Clock::now() + Soon, [&] { return ++checks < 0; }, nullptr);
    });
    while (checks == 0) std::this_thread::yield();
    for (int i = 0; i < 100; ++i) Subscription::End(Subscription::Create(Now() + 1h, {}));
    Subscription::End(0); // does not exist
    EXPECT_EQ(checks, 1);
    Subscription::WakeWaiting();
    while (checks == 1) std::this_thread::yield();
    Subscription::End(id);
    EXPECT_FALSE(waiting.get());
}

TEST_F(SubscriptionTest, EndsOneOfTwoWaitsOnOneEvent) {
    std::atomic<int> checks = 0;
    std::atomic<int> events = 0;
    auto const wait = [&] {
        EventPtr event;
        auto const isAlive = subscription->WaitForEvents(
            Clock::now() + Soon, [&] { return ++checks < 0; }, &event);
        if (event) ++events;
        return isAlive;
    };
    auto first = std::async(std::launch::async, wait);
    auto second = std::async(std::launch::async, wait);
    while (checks < 2) std::this_thread::yield();
    Publish("one");
    while (events == 0) std::this_thread::yield();
    Subscription::End(id);
    EXPECT_NE(first.get(), second.get());
    EXPECT_EQ(events, 1);
}

TEST_F(SubscriptionTest, StopsWaitingOnRequest) {
    EXPECT_TRUE(subscription->WaitForEvents(
        Clock::now() + Soon, [] { return true; }, nullptr));
    EXPECT_TRUE(subscription->WaitForEvents(Clock::now() - 1s, Never, nullptr));
}

TEST_F(SubscriptionTest, LivesToTheEndOfTheClock) {
    ASSERT_TRUE(subscription->Renew(Subscription::Time::max()));
    EXPECT_EQ(subscription->GetTermination(), Subscription::Time::max());
    EXPECT_NE(Subscription::Find(id), nullptr);
}

} // namespace
} // namespace zarn::service::onvif
