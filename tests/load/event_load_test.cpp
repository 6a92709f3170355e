#include "pull_point_fixture.h"

#include <zarn/container/buffer.h>
#include <zarn/onvif/events/subscription_gauge.h>

#include <gtest/gtest.h>
#include <malloc.h>

#include <atomic>
#include <charconv>
#include <chrono>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

namespace zarn::test {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

/// How long to publish events; set by ZARN_EVENT_LOAD_SECONDS.
std::chrono::seconds GetDuration() {
    char const* const text = std::getenv("ZARN_EVENT_LOAD_SECONDS");
    return std::chrono::seconds(text ? std::stoi(text) : 1);
}

/// Heap in use, in MiB.
double GetMemory() {
    auto const heap = mallinfo2();
    return static_cast<double>(heap.uordblks + heap.hblkhd) / (1 << 20);
}

/// Publishes events named "0", "1", ... at a rate per second, or more slowly on a slow machine.
/// Returns the number of events.
int PublishAtRate(int rate, std::chrono::milliseconds duration) {
    constexpr auto Tick = 10ms;
    auto const begin = Clock::now();
    int count = 0;
    for (auto now = Tick; now <= duration; now += Tick) {
        for (; count < rate * now / 1s; ++count) Publish(MakeFieldEvent(std::to_string(count)));
        std::this_thread::sleep_until(begin + now);
    }
    return count;
}

/// A client that pulls continuously and expects the names "0", "1", ... in order, each once.
class Puller {
public:
    explicit Puller(std::string path) : path(std::move(path)) {}

    /// Counts the received events. Returns true if they are correct.
    bool Take(web::response::Pending::Data const& data) {
        if (data.GetStatus() != protocol::network::http::response::Status::Ok) return false;
        std::string text;
        for (auto const& chunk : data.GetBody()) text += chunk->ToStringView();
        constexpr std::string_view Before = R"(Name="Rule" Value=")";
        for (auto at = text.find(Before); at != text.npos; at = text.find(Before, at)) {
            at += Before.size();
            int number = -1;
            std::from_chars(text.data() + at, text.data() + text.size(), number);
            if (number != count) return false;
            ++count;
        }
        return true;
    }

    std::string const path;
    std::shared_ptr<web::response::Pending> pending; ///< current pull
    int count = 0;                                   ///< events received
};

class EventLoad : public PullPointFixture {
protected:
    EventLoad() { engine.SetEnabled(false); }

    /// Publishes `rate` events per second to `clients` waiting clients and expects that each receives all of them.
    void Run(int rate, std::size_t clients, std::chrono::milliseconds duration) {
        std::vector<Puller> pullers;
        for (std::size_t i = 0; i < clients; ++i) {
            Pull(pullers.emplace_back(Subscribe(Termination("PT1H"))));
        }
        std::atomic<int> published = -1;
        auto const begin = Clock::now();
        std::jthread publisher([&] { published = PublishAtRate(rate, duration); });
        auto const end = begin + duration * 10 + 120s;
        for (std::size_t done = 0; done < clients && Clock::now() < end; std::this_thread::sleep_for(1ms)) {
            int const all = published;
            done = 0;
            for (auto& puller : pullers) {
                if (puller.count == all) ++done;
                auto const data = puller.pending->GetData();
                if (data.GetState() != web::response::State::Complete) continue;
                ASSERT_TRUE(puller.Take(data)) << puller.path << " after " << puller.count << " events";
                Pull(puller);
            }
        }
        auto const took = std::chrono::duration<double>(Clock::now() - begin);
        publisher.join();
        std::cout << published << " events to " << clients << " clients in " << took.count() << " s\n";
        EXPECT_GE(published, rate * duration / 1s);
        for (auto& puller : pullers) {
            EXPECT_EQ(puller.count, published) << puller.path;
            EXPECT_EQ(Unsubscribe(puller.path).status, 200);
        }
        for (auto& puller : pullers) WaitFor(*puller.pending);
    }

    /// Does the same and expects that all memory is returned. Measured without a manager, because each of the thousand
    /// threads on which clients wait caches some freed memory while it lives.
    void RunAndExpectMemoryBack(int rate, std::size_t clients) {
        Run(rate, clients, 200ms);
        EndManager();
        auto const before = GetMemory();
        Run(rate, clients, GetDuration());
        EndManager();
        auto const after = GetMemory();
        std::cout << "memory before " << before << " MiB, after " << after << " MiB\n";
#ifndef ZARN_SANITIZED // sanitizers keep freed memory
        EXPECT_LT(after, before + 1);
#endif
        EXPECT_TRUE(onvif::events::GetSubscriptions().empty());
    }

private:
    void Pull(Puller& puller) {
        static std::string const body = Envelope("<tev:PullMessages><tev:Timeout>PT1H</tev:Timeout><tev:MessageLimit>"
                                                 "1000</tev:MessageLimit></tev:PullMessages>");
        puller.pending = Manager().Post(MakeRequest(body, {.path = puller.path, .authenticated = false}));
    }
};

TEST_F(EventLoad, OfTenThousandASecondReachesTenClients) { RunAndExpectMemoryBack(10'000, 10); }

TEST_F(EventLoad, OfAHundredASecondReachesAThousandWaitingClients) { RunAndExpectMemoryBack(100, 1000); }

} // namespace
} // namespace zarn::test
