#include "unit/platform/configuration/tree.h"

#include <zarn/object/primitive.h>

#include <atomic>
#include <functional>
#include <latch>
#include <thread>

namespace zarn::configuration {
namespace {

constexpr int Rounds = 300;

class Concurrency : public Tree {
protected:
    Concurrency() {
        for (auto const* key : {"1", "2", "3"}) Channels().Add(key);
    }

    /// Runs jobs concurrently, each on its own thread, many times.
    void RunTogether(std::vector<std::function<void(int)>> const& jobs) {
        std::latch start(static_cast<std::ptrdiff_t>(jobs.size()));
        std::vector<std::thread> threads;
        for (auto const& job : jobs) {
            threads.emplace_back([&] {
                start.arrive_and_wait();
                for (int round = 0; round < Rounds; ++round) job(round);
            });
        }
        for (auto& thread : threads) thread.join();
    }
};

TEST_F(Concurrency, ReadsWholeStatesWhileEverythingChanges) {
    auto const first = boost::json::parse(R"({"name": "a", "channels": {"1": {"name": "x"}, "2": {}, "3": {}}})");
    auto const second = boost::json::parse(R"({"name": "b", "channels": {"3": {}, "1": {"name": "y"}}})");
    std::atomic<int> heard = 0;
    auto const binding = root->Bind([&](auto const& event) {
        EXPECT_NE(event->GetNode(), nullptr);
        ++heard;
    });
    root->FromJson(first);

    auto const find = [&](int) {
        auto const name = root->Find("channels.1.name")->As<node::Value>().GetValuePtr();
        auto const& text = name->As<object::Primitive<std::string>>().Get();
        EXPECT_TRUE(text == "x" || text == "y") << text;
    };
    auto const iterate = [&](int) {
        std::size_t entries = 0;
        for (auto const& entry : Channels()) {
            entries += entry->GetPath().starts_with("channels.") && entry->As<node::Map>().Find("name") != nullptr;
        }
        EXPECT_GE(entries, 2U);
        EXPECT_LE(entries, 4U);
    };
    auto const compare = [&](int) {
        auto const lock = root->GetLock();
        EXPECT_EQ(At<String>("name").Get() == "a", At<String>("channels.1.name").Get() == "x");
    };
    auto const write = [&](int) {
        auto const json = root->ToJson(Layer::Persisted);
        EXPECT_EQ(json.at("name") == "a", json.at_pointer("/channels/1/name") == "x");
    };
    auto const read = [&](int round) { root->FromJson(round % 2 == 0 ? second : first); };
    auto const set = [&](int round) {
        At<UInt16>("settings.port").Set(static_cast<std::uint16_t>(round));
        At<Bool>("settings.enabled").Override(round % 2 == 0);
        At<Bool>("settings.enabled").RemoveOverride();
    };
    auto const addAndRemove = [&](int) {
        Channels().Remove("new");
        Channels().Add("new");
    };
    auto const bind = [&](int) {
        std::atomic<int> calls = 0;
        auto const port =
            At<UInt16>("settings.port").Bind([&](auto const&) { ++calls; }, node::binding::Option::DeliverCurrent);
        EXPECT_GE(calls, 1);
    };
    auto const describe = [&](int round) { root->Schema({{"more.n" + std::to_string(round), round, ""}}); };

    RunTogether({find, iterate, compare, write, read, set, addAndRemove, bind, bind, describe});
    EXPECT_GT(heard, 0);
}

TEST_F(Concurrency, DeliversOneAtATimeAndTheLastValueLast) {
    std::atomic<int> inside = 0;
    std::uint16_t last = 0;
    auto& port = At<UInt16>("settings.port");
    auto const binding = port.Bind([&](auto const&) {
        EXPECT_EQ(++inside, 1);
        last = port.Get();
        --inside;
    });
    auto const set = [&](int round) { port.Set(static_cast<std::uint16_t>(round)); };
    RunTogether({set, set, set, set});
    EXPECT_EQ(last, port.Get());
}

TEST_F(Concurrency, CallsNothingAfterABindingIsReleased) {
    auto& port = At<UInt16>("settings.port");
    auto const set = [&](int round) { port.Set(static_cast<std::uint16_t>(round)); };
    auto const bindAndRelease = [&](int) {
        auto alive = std::make_unique<int>(0);
        auto binding = port.Bind([value = alive.get()](auto const&) { ++*value; });
        binding.Reset();
        alive.reset();
    };
    RunTogether({set, set, bindAndRelease, bindAndRelease});
    EXPECT_EQ(port.Get(), Rounds - 1);
}

TEST_F(Concurrency, AddsOneEntryPerKeyFromSeveralThreads) {
    std::atomic<int> added = 0;
    auto const add = [&](int round) {
        try {
            Channels().Add("k" + std::to_string(round));
            ++added;
        } catch (Error const&) {
            // Another thread won the race.
        }
    };
    RunTogether({add, add, add});
    EXPECT_EQ(added, Rounds);
    EXPECT_EQ(Channels().GetSize(), static_cast<std::size_t>(Rounds) + 3);
}

} // namespace
} // namespace zarn::configuration
