// The cost of an event to the host's thread per live subscription: the handler alone, against the number of
// subscriptions. Queues are emptied outside the measured time. Then how long others wait while a long list of events is
// published.

#include "operations.h"
#include "post.h"

#include <service/onvif/manager.h>
#include <service/onvif/subscription.h>
#include <zarn/authentication/engine.h>
#include <zarn/configuration/node/root.h>
#include <zarn/meta/data/event.h>
#include <zarn/onvif/events/handler.h>
#include <zarn/onvif/events/subscription_gauge.h>

#include <benchmark/benchmark.h>
#include <malloc.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <ctime>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace zarn;

constexpr char Create[] = R"(<CreatePullPointSubscription xmlns="http://www.onvif.org/ver10/events/wsdl">)"
                          "<InitialTerminationTime>PT1H</InitialTerminationTime></CreatePullPointSubscription>";

/// Number of events queued before the queues are emptied.
constexpr int Batch = 1000;

class Subscriptions {
public:
    explicit Subscriptions(std::int64_t count) : count(count) {
        engine.SetEnabled(false);
        Make();
    }

    ~Subscriptions() { Clear(); }

    Subscriptions(Subscriptions const&) = delete;
    Subscriptions& operator=(Subscriptions const&) = delete;

    void Empty() {
        Clear();
        Make();
    }

private:
    void Make() {
        for (std::int64_t i = 0; i < count; ++i) bench::Post(manager, std::make_shared<bench::Request>(Create));
    }

    void Clear() {
        for (auto const& [id, queued] : onvif::events::GetSubscriptions()) {
            auto const path = "/onvif/events_service/Subscription?Idx=" + std::to_string(id);
            bench::Post(manager, std::make_shared<bench::Request>(bench::Unsubscribe, path));
        }
    }

    std::int64_t count;
    ZarnAuthenticationEngine engine;
    service::onvif::Manager manager{&engine, std::make_shared<configuration::node::Root>(), nullptr, {}};
};

auto MakeEvent() { return std::make_shared<meta::data::Event>("presence", "rule", std::chrono::system_clock::now()); }

/// Heap in use, in bytes.
double GetMemory() {
    auto const heap = mallinfo2();
    return static_cast<double>(heap.uordblks + heap.hblkhd);
}

void QueueEvent(benchmark::State& state) {
    Subscriptions subscriptions(state.range(0));
    auto const event = MakeEvent();
    auto memory = GetMemory();
    double taken = 0; // by the events of a batch, in bytes
    int queued = 0;
    for ([[maybe_unused]] auto _ : state) {
        onvif::events::Publish(event);
        if (++queued % Batch != 0) continue;
        state.PauseTiming();
        taken = GetMemory() - memory;
        subscriptions.Empty();
        memory = GetMemory();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
    state.counters["per event and subscription"] =
        benchmark::Counter(static_cast<double>(state.iterations() * state.range(0)),
                           benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
    state.counters["bytes per event and subscription"] = taken / Batch / static_cast<double>(state.range(0));
}

using service::onvif::Subscription;

// What a thread does again and again while another one publishes a list:

/// For comparison: how long the system takes the processor away.
void DoNothing(Subscription&) {}

void Pop(Subscription& subscription) { benchmark::DoNotOptimize(subscription.Pop()); }

void GetTermination(Subscription& subscription) { benchmark::DoNotOptimize(subscription.GetTermination()); }

void CreateAnother(Subscription& subscription) {
    Subscription::End(Subscription::Create(subscription.GetTermination(), {}));
}

void PublishAnother(Subscription&) { onvif::events::Publish(MakeEvent()); }

/// The processor time of this thread, which other processes cannot prolong.
std::chrono::nanoseconds GetProcessorTime() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

/// Publishes 10,000 events to the given number of subscriptions, and meanwhile measures how long an operation takes on
/// this thread. "step" is the longest processor time of one of the events: how long a lock can be held.
void WaitForAList(benchmark::State& state, void (*operate)(Subscription&)) {
    using Clock = std::chrono::steady_clock;
    constexpr int Events = 10'000;
    auto const seconds = [](Clock::duration duration) { return std::chrono::duration<double>(duration).count(); };
    Subscriptions const subscriptions(state.range(0));
    auto const subscription = Subscription::Find(onvif::events::GetSubscriptions().front().id);
    for ([[maybe_unused]] auto _ : state) {
        std::vector<Clock::duration> lasted;
        lasted.reserve(10'000'000);
        std::atomic<bool> published = false;
        std::chrono::nanoseconds step{};
        auto const begin = Clock::now();
        std::jthread publisher([&] {
            for (int i = 0; i < Events; ++i) {
                auto const start = GetProcessorTime();
                onvif::events::Publish(MakeEvent());
                step = std::max(step, GetProcessorTime() - start);
            }
            published = true;
        });
        while (!published && lasted.size() < lasted.capacity()) {
            auto const start = Clock::now();
            operate(*subscription);
            lasted.push_back(Clock::now() - start);
        }
        publisher.join();
        state.counters["list"] = seconds(Clock::now() - begin);
        state.counters["step"] = seconds(step);
        std::ranges::sort(lasted);
        state.counters["operations"] = static_cast<double>(lasted.size());
        state.counters["p99"] = seconds(lasted[lasted.size() * 99 / 100]);
        state.counters["longest"] = seconds(lasted.back());
    }
}

BENCHMARK(QueueEvent)->Arg(1)->Arg(10)->Arg(100)->Arg(1000)->Iterations(20000)->UseRealTime();
BENCHMARK_CAPTURE(WaitForAList, Nothing, DoNothing)->Arg(1000)->Iterations(1)->UseRealTime();
BENCHMARK_CAPTURE(WaitForAList, Pop, Pop)->Arg(1000)->Iterations(1)->UseRealTime();
BENCHMARK_CAPTURE(WaitForAList, GetTermination, GetTermination)->Arg(1000)->Iterations(1)->UseRealTime();
BENCHMARK_CAPTURE(WaitForAList, Create, CreateAnother)->Arg(1000)->Iterations(1)->UseRealTime();
BENCHMARK_CAPTURE(WaitForAList, Publish, PublishAnother)->Arg(1000)->Iterations(1)->UseRealTime();

} // namespace

BENCHMARK_MAIN();
