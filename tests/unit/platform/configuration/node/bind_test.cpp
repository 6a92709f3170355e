#include "support/asleep.h"
#include "unit/platform/configuration/tree.h"

#include <zarn/configuration/event.h>

#include <atomic>
#include <chrono>
#include <future>
#include <latch>
#include <stdexcept>
#include <thread>

namespace zarn::configuration {
namespace {

using node::binding::Option;
using testing::ElementsAre;
using testing::IsEmpty;

class BindTest : public Tree {
protected:
    /// Records the paths of a node's events.
    type::Binding Record(Node& node, node::binding::Options options = {}) {
        return node.Bind([this](auto const& event) { heard.push_back(event->GetNode()->GetPath()); }, options);
    }

    Bool& enabled = At<Bool>("settings.enabled");
    UInt16& port = At<UInt16>("settings.port");
    std::vector<std::string> heard;
};

TEST_F(BindTest, DeliversNothingAtFirst) {
    auto const binding = Record(enabled);
    EXPECT_TRUE(binding);
    EXPECT_THAT(heard, IsEmpty());
}

TEST_F(BindTest, DeliversTheCurrentValueOnceBeforeItReturns) {
    std::shared_ptr<Event const> event;
    auto const binding = enabled.Bind([&](auto const& delivered) { event = delivered; }, Option::DeliverCurrent);
    ASSERT_NE(event, nullptr);
    EXPECT_TRUE(event->Is<event::Changed>());
    EXPECT_EQ(event->GetTypeHash(), type::Hash("zarn.configuration.event.Changed"));
    EXPECT_EQ(event->GetNode(), root->Find("settings.enabled"));
}

TEST_F(BindTest, AcceptsTheOptionAsARawValue) {
    auto const binding = Record(enabled, node::binding::Options(1));
    EXPECT_THAT(heard, ElementsAre("settings.enabled"));
}

TEST_F(BindTest, DeliversACurrentMapAsOneEvent) {
    auto const binding = Record(*root, Option::DeliverCurrent);
    EXPECT_THAT(heard, ElementsAre(""));
}

TEST_F(BindTest, RefusesAnEmptyCallback) { EXPECT_THROW(std::ignore = root->Bind({}), std::invalid_argument); }

TEST_F(BindTest, DeliversAfterTheChange) {
    std::vector<bool> values;
    auto const binding = enabled.Bind([&](auto const&) { values.push_back(enabled.Get()); });
    enabled.Set(true);
    enabled.SetFromString("false");
    enabled.SetFromJson(true);
    EXPECT_THAT(values, ElementsAre(true, false, true));
}

TEST_F(BindTest, DeliversAnUnchangedValueThatIsSet) {
    auto const binding = Record(enabled);
    enabled.Set(false);
    enabled.Set(false);
    EXPECT_EQ(heard.size(), 2U);
}

TEST_F(BindTest, DeliversNothingWhenAValueIsRefused) {
    auto const binding = Record(port);
    EXPECT_THROW(port.SetFromString("70000"), Error);
    EXPECT_THAT(heard, IsEmpty());
}

TEST_F(BindTest, DeliversNothingAfterTheBindingIsReleased) {
    auto binding = Record(enabled);
    binding.Reset();
    enabled.Set(true);
    { auto const second = Record(enabled); }
    enabled.Set(true);
    EXPECT_THAT(heard, IsEmpty());
}

TEST_F(BindTest, DestroysItsCallbackWhenReleased) {
    auto held = std::make_shared<int>();
    std::weak_ptr<int> const weak = held;
    auto binding = enabled.Bind([held = std::move(held)](auto const&) {});
    EXPECT_FALSE(weak.expired());
    binding.Reset();
    EXPECT_TRUE(weak.expired());
}

TEST_F(BindTest, DeliversEventsOfTheNodesBelow) {
    auto const binding = Record(*root);
    enabled.Set(true);
    Channels().Add("1");
    At<UInt32>("channels.1.video.width").Set(640);
    EXPECT_THAT(heard, ElementsAre("settings.enabled", "channels.1", "channels.1.video.width"));
}

TEST_F(BindTest, DeliversNoEventsOfOtherNodes) {
    auto const binding = Record(enabled);
    port.Set(81);
    EXPECT_THAT(heard, IsEmpty());
}

TEST_F(BindTest, CallsEveryCallbackInTheOrderOfBinding) {
    std::string order;
    auto const first = enabled.Bind([&](auto const&) { order += '1'; });
    auto const second = enabled.Bind([&](auto const&) { order += '2'; });
    auto const above = root->Bind([&](auto const&) { order += '3'; });
    enabled.Set(true);
    EXPECT_EQ(order, "123");
}

TEST_F(BindTest, MayBeReleasedInItsOwnCallback) {
    auto held = std::make_shared<int>();
    std::weak_ptr<int> const weak = held;
    int calls = 0;
    type::Binding binding;
    binding = enabled.Bind([&, held = std::move(held)](auto const&) {
        ++calls;
        binding.Reset();
        EXPECT_FALSE(weak.expired());
    });
    enabled.Set(true);
    EXPECT_TRUE(weak.expired());
    enabled.Set(false);
    EXPECT_EQ(calls, 1);
}

TEST_F(BindTest, DropsPendingEventsWhenReleasedInItsOwnCallback) {
    int calls = 0;
    type::Binding binding;
    binding = root->Bind([&](auto const&) {
        ++calls;
        port.Set(81);
        binding.Reset();
    });
    enabled.Set(true);
    EXPECT_EQ(calls, 1);
}

TEST_F(BindTest, MayBindAnotherCallbackInACallback) {
    type::Binding inner;
    auto const outer = enabled.Bind([&](auto const&) {
        if (!inner) inner = Record(port, Option::DeliverCurrent);
    });
    enabled.Set(true);
    port.Set(81);
    EXPECT_THAT(heard, ElementsAre("settings.port", "settings.port"));
}

TEST_F(BindTest, DeliversAChangeMadeInACallbackAfterThatCallback) {
    std::string order;
    auto const binding = port.Bind([&](auto const&) {
        order += '<';
        if (port.Get() < 90) port.Set(static_cast<std::uint16_t>(port.Get() + 5));
        order += '>';
    });
    port.Set(80);
    EXPECT_EQ(port.Get(), 90);
    EXPECT_EQ(order, "<><><>");
}

TEST_F(BindTest, RethrowsTheFirstExceptionAfterCallingAllCallbacks) {
    auto const first = enabled.Bind([](auto const&) { throw std::runtime_error("first"); });
    auto const second = enabled.Bind([](auto const&) { throw std::runtime_error("second"); });
    auto const third = Record(enabled);
    EXPECT_THAT([&] { enabled.Set(true); }, testing::ThrowsMessage<std::runtime_error>("first"));
    EXPECT_TRUE(enabled.Get());
    EXPECT_EQ(heard.size(), 1U);
    EXPECT_THROW(enabled.Set(false), std::runtime_error);
    EXPECT_EQ(heard.size(), 2U);
}

TEST_F(BindTest, RethrowsAndDoesNotBindWhenTheCurrentValueThrows) {
    int calls = 0;
    auto const callback = [&](auto const& event) {
        ++calls;
        throw event->GetNode()->BadCastError("zarn.configuration.node.Bool");
    };
    EXPECT_THROW(std::ignore = port.Bind(callback, Option::DeliverCurrent), object::BadCast);
    port.Set(81);
    EXPECT_EQ(calls, 1);
}

TEST_F(BindTest, MayOutliveItsTree) {
    auto binding = Record(*root);
    root.reset();
    EXPECT_NO_THROW(binding.Reset());
}

TEST_F(BindTest, AllowsOtherThreadsAccessDuringACallback) {
    auto const binding = enabled.Bind([&](auto const&) {
        auto other = std::async(std::launch::async, [&] {
            auto const lock = root->GetLock();
            port.Set(81);
            return root->Find("settings.port") != nullptr;
        });
        ASSERT_EQ(other.wait_for(std::chrono::seconds(30)), std::future_status::ready);
        EXPECT_TRUE(other.get());
    });
    enabled.Set(true);
    EXPECT_EQ(port.Get(), 81);
}

TEST_F(BindTest, WaitsForARunningCallbackWhenReleased) {
    std::latch entered(1);
    std::latch releasing(1);
    std::atomic<bool> finished = false;
    auto binding = enabled.Bind([&, main = gettid()](auto const&) {
        entered.count_down();
        releasing.wait();
        EXPECT_TRUE(zarn::test::FallsAsleep(main)) << "the release does not wait";
        finished = true;
    });
    std::thread setter([&] { enabled.Set(true); });
    entered.wait();
    releasing.count_down();
    binding.Reset();
    EXPECT_TRUE(finished);
    setter.join();
}

TEST_F(BindTest, DeliversAnEventOnTheThreadAlreadyInTheCallback) {
    std::latch entered(1);
    std::latch proceed(1);
    std::vector<std::thread::id> threads;
    auto const binding = port.Bind([&](auto const&) {
        threads.push_back(std::this_thread::get_id());
        if (threads.size() > 1) return;
        entered.count_down();
        proceed.wait();
    });
    std::thread setter([&] { port.Set(81); });
    auto const id = setter.get_id();
    entered.wait();
    port.Set(82);
    port.Set(83);
    proceed.count_down();
    setter.join();
    EXPECT_THAT(threads, ElementsAre(id, id));
    EXPECT_EQ(port.Get(), 83);
}

TEST_F(BindTest, DoesNotDeadlockWhenCallbacksOfTwoThreadsChangeEachOthersNodes) {
    std::latch both(2);
    std::atomic<int> calls = 0;
    auto const react = [&](auto change) {
        return [&calls, &both, change](auto const&) {
            if (++calls > 2) return;
            both.arrive_and_wait();
            change();
        };
    };
    auto const first = enabled.Bind(react([&] { port.Set(81); }));
    auto const second = port.Bind(react([&] { enabled.Set(true); }));
    std::thread other([&] { enabled.Set(true); });
    port.Set(82);
    other.join();
    EXPECT_EQ(calls, 4);
}

} // namespace
} // namespace zarn::configuration
