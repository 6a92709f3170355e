#include "support/asleep.h"

#include <zarn/logging/capture.h>
#include <zarn/onvif/events/handler.h>

#include <gmock/gmock.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <future>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace zarn::onvif::events {
namespace {

using namespace std::chrono_literals;
using EventPointer = std::shared_ptr<meta::data::Event>;
using testing::ElementsAre;

EventPointer MakeEvent(std::string const& type = "presence") {
    return std::make_shared<meta::data::Event>(type, "", std::chrono::system_clock::time_point());
}

TEST(EventHandler, GetsEveryEventOnThePublishingThread) {
    std::vector<EventPointer> received;
    auto const binding = RegisterHandler([&, thread = std::this_thread::get_id()](EventPointer event) {
        EXPECT_EQ(std::this_thread::get_id(), thread);
        received.push_back(std::move(event));
    });
    auto const first = MakeEvent();
    auto const second = MakeEvent();
    Publish(first);
    Publish(second);
    Publish(first);
    EXPECT_THAT(received, ElementsAre(first, second, first));
}

TEST(EventHandler, IsCalledWhileItsBindingExists) {
    int calls = 0;
    auto binding = RegisterHandler([&](EventPointer const&) { ++calls; });
    EXPECT_TRUE(binding);
    Publish(MakeEvent());
    auto moved = std::move(binding);
    Publish(MakeEvent());
    moved.Reset();
    Publish(MakeEvent());
    EXPECT_EQ(calls, 2);
}

TEST(EventHandler, IsCalledInTheOrderOfRegistration) {
    std::string order;
    auto const first = RegisterHandler([&](EventPointer const&) { order += '1'; });
    auto second = RegisterHandler([&](EventPointer const&) { order += '2'; });
    auto const third = RegisterHandler([&](EventPointer const&) { order += '3'; });
    Publish(MakeEvent());
    second.Reset();
    Publish(MakeEvent());
    EXPECT_EQ(order, "12313");
}

TEST(EventHandler, IsNotNeededToPublish) {
    auto const event = MakeEvent();
    Publish(event);
    EXPECT_EQ(event.use_count(), 1);
}

TEST(EventHandler, DoesNotGetEarlierEvents) {
    Publish(MakeEvent());
    int calls = 0;
    auto const binding = RegisterHandler([&](EventPointer const&) { ++calls; });
    EXPECT_EQ(calls, 0);
}

TEST(EventHandler, IsDestroyedWithItsBinding) {
    auto const held = std::make_shared<int>();
    auto binding = RegisterHandler([held](EventPointer const&) {});
    EXPECT_EQ(held.use_count(), 2);
    binding.Reset();
    EXPECT_EQ(held.use_count(), 1);
}

TEST(EventHandler, MustNotBeEmpty) { EXPECT_THROW(static_cast<void>(RegisterHandler(nullptr)), std::invalid_argument); }

TEST(EventHandler, NeverGetsANullEvent) {
    int calls = 0;
    auto const binding = RegisterHandler([&](EventPointer const&) { ++calls; });
    EXPECT_THROW(Publish(nullptr), std::invalid_argument);
    EXPECT_EQ(calls, 0);
}

TEST(EventHandler, ThatThrowsIsLoggedAndAffectsNoOther) {
    logging::Capture const capture;
    int calls = 0;
    auto const first = RegisterHandler([](EventPointer const&) { throw std::runtime_error("broken"); });
    auto const second = RegisterHandler([](EventPointer const&) { throw 1; });
    auto const third = RegisterHandler([&](EventPointer const&) { ++calls; });
    Publish(MakeEvent());
    Publish(MakeEvent());
    EXPECT_EQ(calls, 2);
    EXPECT_TRUE(capture.Contains("An event handler threw: broken"));
    EXPECT_TRUE(capture.Contains("An event handler threw: an exception of unknown type"));
}

TEST(EventHandler, ThatAlwaysThrowsIsLoggedOnceASecond) {
    logging::Capture const capture;
    auto const binding = RegisterHandler([](EventPointer const&) { throw std::runtime_error("broken"); });
    auto const start = std::chrono::steady_clock::now();
    for (int count = 0; count < 1000; ++count) Publish(MakeEvent());
    auto const seconds = std::chrono::ceil<std::chrono::seconds>(std::chrono::steady_clock::now() - start).count();
    EXPECT_LE(capture.GetLines().size(), static_cast<std::size_t>(seconds));
}

TEST(EventHandler, MayReleaseItsOwnBinding) {
    type::Binding binding;
    int calls = 0;
    auto const held = std::make_shared<int>();
    binding = RegisterHandler([&calls, &binding, held](EventPointer const&) {
        ++calls;
        binding.Reset();
        EXPECT_EQ(held.use_count(), 2); // a running handler is not destroyed
    });
    Publish(MakeEvent());
    EXPECT_EQ(held.use_count(), 1);
    Publish(MakeEvent());
    EXPECT_EQ(calls, 1);
}

TEST(EventHandler, MayReleaseItsOwnBindingWithinNestedCalls) {
    type::Binding binding;
    int calls = 0;
    auto const held = std::make_shared<int>();
    binding = RegisterHandler([&calls, &binding, held](EventPointer const& event) {
        if (++calls < 3) {
            Publish(event);
        } else {
            binding.Reset();
        }
        EXPECT_EQ(held.use_count(), 2);
    });
    Publish(MakeEvent());
    EXPECT_EQ(calls, 3);
    EXPECT_EQ(held.use_count(), 1);
}

TEST(EventHandler, MayReleaseItsOwnBindingAndThrow) {
    type::Binding binding;
    auto const held = std::make_shared<int>();
    binding = RegisterHandler([&binding, held](EventPointer const&) {
        binding.Reset();
        throw std::runtime_error("broken");
    });
    Publish(MakeEvent());
    EXPECT_EQ(held.use_count(), 1);
}

TEST(EventHandler, IsNotCalledOnceAnotherHasReleasedIt) {
    type::Binding later;
    int calls = 0;
    auto const first = RegisterHandler([&](EventPointer const&) { later.Reset(); });
    later = RegisterHandler([&](EventPointer const&) { ++calls; });
    Publish(MakeEvent());
    EXPECT_EQ(calls, 0);
}

TEST(EventHandler, RegisteredByAnotherGetsTheNextEvent) {
    std::vector<type::Binding> bindings;
    int calls = 0;
    auto const first = RegisterHandler(
        [&](EventPointer const&) { bindings.push_back(RegisterHandler([&](EventPointer const&) { ++calls; })); });
    Publish(MakeEvent());
    EXPECT_EQ(calls, 0);
    Publish(MakeEvent());
    EXPECT_EQ(calls, 1);
}

TEST(EventHandler, BlocksItsReleaseOnAnotherThread) {
    std::promise<void> running;
    std::promise<void> gate;
    std::atomic<bool> ended = false;
    auto binding = RegisterHandler([&](EventPointer const&) {
        running.set_value();
        gate.get_future().get();
        ended = true;
    });
    std::thread publisher([] { Publish(MakeEvent()); });
    running.get_future().get();
    std::promise<pid_t> releasing;
    std::thread releaser([&] {
        releasing.set_value(gettid());
        binding.Reset();
        EXPECT_TRUE(ended);
    });
    EXPECT_TRUE(test::FallsAsleep(releasing.get_future().get())) << "the release does not wait";
    gate.set_value();
    publisher.join();
    releaser.join();
}

TEST(EventHandler, ReleasedByItselfWaitsForTheOtherThreadsInIt) {
    std::atomic<int> inside = 0;
    std::atomic<bool> otherEnded = false;
    type::Binding binding;
    auto const held = std::make_shared<int>();
    binding = RegisterHandler([&, held, main = gettid()](EventPointer const& event) {
        ++inside;
        while (inside < 2) std::this_thread::yield();
        if (event->GetType() == "release") {
            binding.Reset();
            EXPECT_TRUE(otherEnded);
            EXPECT_EQ(held.use_count(), 2);
        } else {
            EXPECT_TRUE(test::FallsAsleep(main)) << "the release does not wait";
            otherEnded = true;
        }
    });
    std::thread other([] { Publish(MakeEvent()); });
    Publish(MakeEvent("release"));
    other.join();
    EXPECT_EQ(held.use_count(), 1);
}

TEST(EventHandler, RunsInSeveralThreadsAtOnce) {
    std::atomic<int> inside = 0;
    auto const binding = RegisterHandler([&](EventPointer const&) {
        ++inside;
        while (inside < 3) std::this_thread::yield();
    });
    std::vector<std::thread> publishers;
    for (int count = 0; count < 3; ++count) publishers.emplace_back([] { Publish(MakeEvent()); });
    for (auto& publisher : publishers) publisher.join();
    EXPECT_EQ(inside, 3);
}

TEST(EventHandler, GetsTheEventsOfAThreadInOrder) {
    std::vector<std::vector<std::string>> received(4);
    std::vector<std::vector<std::string>> published(4);
    thread_local std::size_t publisher = 0;
    auto const binding =
        RegisterHandler([&](EventPointer const& event) { received[publisher].push_back(event->GetType()); });
    std::vector<std::thread> threads;
    for (std::size_t count = 0; count < 4; ++count) {
        threads.emplace_back([&published, count] {
            publisher = count;
            for (int number = 0; number < 1000; ++number) {
                published[count].push_back(std::to_string(number));
                Publish(MakeEvent(published[count].back()));
            }
        });
    }
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(received, published);
}

TEST(EventHandler, NeverRunsAfterItsReleaseWhileManyPublish) {
    std::atomic<bool> stop = false;
    std::atomic<int> calls = 0;
    std::vector<std::thread> publishers;
    for (int count = 0; count < 2; ++count) {
        publishers.emplace_back([&] {
            while (!stop) Publish(MakeEvent());
        });
    }
    std::vector<std::thread> owners;
    for (int count = 0; count < 2; ++count) {
        owners.emplace_back([&] {
            for (int round = 0; round < 1000; ++round) {
                std::atomic<bool> alive = true;
                auto binding = RegisterHandler([&](EventPointer const&) {
                    EXPECT_TRUE(alive);
                    ++calls;
                });
                if (round % 8 == 0) {
                    for (int const before = calls; calls == before;) std::this_thread::yield();
                }
                binding.Reset();
                alive = false;
            }
        });
    }
    for (auto& owner : owners) owner.join();
    stop = true;
    for (auto& publisher : publishers) publisher.join();
    EXPECT_GE(calls, 125);
}

} // namespace
} // namespace zarn::onvif::events
