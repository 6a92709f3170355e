// One SOAP exchange (GetSystemDateAndTime) through Manager::Post, compared with gSOAP alone: the same context, digest
// plugin, streams and one service. A single thread waits for each answer. BarePull is an exchange of PullMessages with
// one message in gSOAP alone: what the answers to waiting pulls are compared with.

#include "bare_exchange.h"
#include "bare_pull.h"
#include "post.h"

#include <service/onvif/device.h>
#include <service/onvif/manager.h>
#include <zarn/authentication/engine.h>
#include <zarn/configuration/node/root.h>

#include <benchmark/benchmark.h>

#include <cstddef>
#include <memory>

namespace {

using namespace zarn;

constexpr char Operation[] = R"(<GetSystemDateAndTime xmlns="http://www.onvif.org/ver10/device/wsdl"/>)";

void BareExchange(benchmark::State& state) {
    auto const text = bench::ToText(bench::Request(Operation));
    for ([[maybe_unused]] auto _ : state) {
        bench::BareExchange exchange(text);
        service::onvif::DeviceService device(exchange.GetContext(), service::onvif::URIBase(8080, false), nullptr, {},
                                             nullptr);
        auto answer = exchange.Complete(device);
        if (answer.empty()) state.SkipWithError("the exchange failed");
        benchmark::DoNotOptimize(answer.data());
    }
}

void ManagerPost(benchmark::State& state) {
    ZarnAuthenticationEngine engine;
    service::onvif::Manager manager(&engine, std::make_shared<configuration::node::Root>(), nullptr, {});
    auto const request = std::make_shared<bench::Request>(Operation);
    for ([[maybe_unused]] auto _ : state)
        if (bench::Post(manager, request) != 200) state.SkipWithError("the exchange failed");
}

void BarePull(benchmark::State& state) {
    std::size_t size = 0;
    for ([[maybe_unused]] auto _ : state) {
        size = bench::ExchangeBarePull();
        if (size == 0) state.SkipWithError("the exchange failed");
    }
    state.counters["bytes"] = static_cast<double>(size);
}

BENCHMARK(BareExchange)->UseRealTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(BarePull)->UseRealTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(ManagerPost)->UseRealTime()->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();
