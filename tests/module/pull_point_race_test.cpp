#include "pull_point_fixture.h"

#include <service/onvif/events.h>
#include <service/onvif/soap_context.h>
#include <zarn/asio/global_context.h>
#include <zarn/onvif/events/subscription_gauge.h>

#include <boost/asio/io_context.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/system_timer.hpp>
#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <future>
#include <latch>
#include <numeric>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace zarn::test {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::SizeIs;

/// Blocks the timer thread during its lifetime.
class TimersThread {
public:
    TimersThread() {
        boost::asio::post(context.Get(), [this] {
            held.set_value();
            noticing.get_future().wait();
        });
        held.get_future().wait();
        // Due before any other timer, so that its handler runs first.
        first.expires_at({});
        first.async_wait([this](boost::system::error_code) {
            noticed.set_value();
            goingOn.get_future().wait();
        });
    }

    /// Lets the thread collect all timers that are due, then blocks it before it runs their handlers.
    void TakeNotice() {
        noticing.set_value();
        noticed.get_future().wait();
    }

    /// Unblocks the thread and waits until it has run the handlers.
    void GoOn() {
        goingOn.set_value();
        std::promise<void> done;
        boost::asio::post(context.Get(), [&done] { done.set_value(); });
        done.get_future().wait();
    }

private:
    asio::GlobalContext context;
    boost::asio::system_timer first{context.Get()};
    std::promise<void> held;
    std::promise<void> noticing;
    std::promise<void> noticed;
    std::promise<void> goingOn;
};

class PullPointRace : public PullPointFixture {
protected:
    /// Runs a function on several threads at once and returns their results.
    template <class Function>
    static auto RunAtOnce(int threads, Function function) {
        std::latch begin(threads);
        std::vector<std::future<decltype(function())>> running;
        for (int i = 0; i < threads; ++i) {
            running.push_back(std::async(std::launch::async, [&] {
                begin.arrive_and_wait();
                return function();
            }));
        }
        std::vector<decltype(function())> results;
        for (auto& each : running) results.push_back(each.get());
        return results;
    }
};

TEST_F(PullPointRace, OfTheFirstClientsYieldsUniqueIdsAndNoDuplicateEvents) {
    Manager(); // create the manager before the threads start
    std::set<std::string> paths;
    for (auto const& some : RunAtOnce(8, [this] {
             std::vector<std::string> made;
             while (made.size() < 10) made.push_back(Subscribe());
             return made;
         })) {
        paths.insert(some.begin(), some.end());
    }
    EXPECT_THAT(paths, SizeIs(80));
    Publish(MakeFieldEvent("one"));
    for (auto const& path : paths) EXPECT_THAT(GetRules(Pull(path)), ElementsAre("one")) << path;
}

TEST_F(PullPointRace, OfTheFirstServicesRegistersOnce) {
    // Calls the services directly, because their first steps are closer together than those of whole requests.
    using service::onvif::EventsService;
    std::latch ready(8);
    RunAtOnce(8, [&] {
        auto const context = service::onvif::MakeSoapContext();
        ready.arrive_and_wait();
        EventsService(context.get(), service::onvif::URIBase(80, false), &engine, {});
        return true;
    });
    auto const path = Subscribe();
    Publish(MakeFieldEvent("one"));
    EXPECT_THAT(GetRules(Pull(path)), ElementsAre("one"));
}

TEST_F(PullPointRace, OfExpiryWithRenewalKeepsTheSubscription) {
    TimersThread thread;
    auto const renewed = Subscribe(Termination("2001-01-01T00:00:00Z"));
    auto const other = Subscribe(Termination("2001-01-01T00:00:00Z"));
    thread.TakeNotice();
    EXPECT_EQ(Renew(renewed, "PT1H").status, 200);
    EXPECT_EQ(Pull(other).status, 200);
    thread.GoOn();
    EXPECT_EQ(Pull(renewed).status, 200);
    EXPECT_THAT(Pull(other), IsNotFound());
}

TEST_F(PullPointRace, OfExpiryWithUnsubscribeEndsOnlyThatSubscription) {
    TimersThread thread;
    auto const path = Subscribe(Termination("2001-01-01T00:00:00Z"));
    auto const other = Subscribe();
    thread.TakeNotice();
    EXPECT_EQ(Unsubscribe(path).status, 200);
    auto const next = Subscribe();
    thread.GoOn();
    EXPECT_THAT(Pull(path), IsNotFound());
    EXPECT_EQ(Pull(other).status, 200);
    EXPECT_EQ(Pull(next).status, 200);
}

TEST_F(PullPointRace, OfAPullWithUnsubscribeReturnsTheEventsSoFar) {
    constexpr std::size_t Count = 10'000;
    // If the unsubscription runs only after everything is pulled, retry.
    std::size_t pulled = Count;
    for (int attempt = 0; pulled == Count && attempt < 20; ++attempt) {
        auto const path = Subscribe();
        for (std::size_t i = 0; i < Count; ++i) Publish(MakeFieldEvent(std::to_string(i)));
        auto const pending = PostPull(path, Count, "PT0S");
        // The first conversion removes one event from the queue.
        while (onvif::events::GetSubscriptions().back().queued == Count) std::this_thread::yield();
        EXPECT_EQ(Unsubscribe(path).status, 200);
        auto const rules = GetRules(ToReply(WaitFor(*pending)));
        EXPECT_THAT(Pull(path), IsNotFound());
        ASSERT_FALSE(rules.empty());
        for (std::size_t i = 0; i < rules.size(); ++i) ASSERT_EQ(rules[i], std::to_string(i));
        pulled = rules.size();
    }
    EXPECT_LT(pulled, Count);
}

TEST_F(PullPointRace, OfSeveralPullsDeliversEachEventOnceInOrder) {
    constexpr int Count = 400;
    auto const path = Subscribe();
    std::atomic<bool> published = false;
    auto publisher = std::async(std::launch::async, [&] {
        for (int i = 0; i < Count; ++i) Publish(MakeFieldEvent(std::to_string(i)));
        published = true;
    });
    std::multiset<int> all;
    for (auto const& some : RunAtOnce(4, [&] {
             std::vector<int> numbers;
             for (bool last = false, some = true; !last || some;) {
                 last = published;
                 auto const rules = GetRules(Pull(path, 3, "PT0.05S"));
                 for (auto const& rule : rules) numbers.push_back(std::stoi(rule));
                 some = !rules.empty();
             }
             return numbers;
         })) {
        EXPECT_TRUE(std::ranges::is_sorted(some));
        all.insert(some.begin(), some.end());
    }
    std::multiset<int> expected;
    for (int i = 0; i < Count; ++i) expected.insert(i);
    EXPECT_EQ(all, expected);
}

TEST_F(PullPointRace, OfTwoPullsWithAStreamLosesAndRepeatsNothing) {
    constexpr int Count = 20'000;
    auto const path = Subscribe("<tev:Filter><wsnt:TopicExpression>tns1:RuleEngine/FieldDetector/ObjectsInside"
                                "</wsnt:TopicExpression></tev:Filter>");
    std::atomic<bool> published = false;
    auto publisher = std::async(std::launch::async, [&] {
        for (int i = 0; i < Count; ++i) {
            Publish(MakeFieldEvent("held back", "enter"));
            Publish(MakeFieldEvent(std::to_string(i)));
        }
        published = true;
    });
    std::vector<int> all;
    for (auto const& some : RunAtOnce(2, [&] {
             std::vector<int> numbers;
             for (bool last = false, some = true; !last || some;) {
                 last = published;
                 auto const rules = GetRules(Pull(path, 1000, "PT0.05S"));
                 for (auto const& rule : rules) numbers.push_back(std::stoi(rule));
                 some = !rules.empty();
             }
             return numbers;
         })) {
        EXPECT_TRUE(std::ranges::is_sorted(some));
        all.insert(all.end(), some.begin(), some.end());
    }
    std::ranges::sort(all);
    std::vector<int> expected(Count);
    std::iota(expected.begin(), expected.end(), 0);
    EXPECT_EQ(all, expected);
}

class PullPointDeathTest : public PullPointFixture {
protected:
    /// Exits the process while events arrive and subscriptions expire, one per millisecond.
    [[noreturn]] void ExitInTheMidst() {
        static std::atomic<bool> ended = false;
        static std::thread publisher;
        // atexit handlers run in reverse order, so this one runs after the subscriptions are destroyed.
        std::atexit([] {
            ended = true;
            publisher.join();
        });
        for (int i = 0; i < 200; ++i) Subscribe(Termination("PT0." + std::to_string(1000 + i).substr(1) + "S"));
        EndManager();
        std::latch begun(1);
        publisher = std::thread([&begun] {
            Publish(MakeFieldEvent());
            begun.count_down();
            while (!ended) Publish(MakeFieldEvent());
        });
        begun.wait();
        std::exit(HasFailure() ? 1 : 0);
    }
};

TEST_F(PullPointDeathTest, DoesNotCrashOnProcessExit) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    for (int i = 0; i < 5; ++i) EXPECT_EXIT(ExitInTheMidst(), testing::ExitedWithCode(0), "");
}

} // namespace
} // namespace zarn::test
