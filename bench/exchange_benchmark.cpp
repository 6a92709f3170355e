// One SOAP exchange (GetSystemDateAndTime) through Manager::Post, compared with gSOAP alone: the same context, digest
// plugin, streams and one service. A single thread waits for each answer. BarePull is an exchange of PullMessages with
// one message in gSOAP alone: what the answers to waiting pulls are compared with.

#include "bare_pull.h"
#include "post.h"

#include <service/onvif/device.h>
#include <service/onvif/manager.h>
#include <service/onvif/soap_context.h>
#include <zarn/authentication/engine.h>
#include <zarn/configuration/node/root.h>

#include <benchmark/benchmark.h>
#include <httpda.h>

#include <memory>
#include <sstream>
#include <string>

namespace {

using namespace zarn;

constexpr char Operation[] = R"(<GetSystemDateAndTime xmlns="http://www.onvif.org/ver10/device/wsdl"/>)";

void BareExchange(benchmark::State& state) {
    bench::Request const request(Operation);
    std::string const body(request.GetBody());
    std::string const text = "POST /onvif/device_service HTTP/1.1\r\nHost: device:8080\r\n"
                             "Content-Type: application/soap+xml; charset=utf-8\r\nContent-Length: " +
                             std::to_string(body.size()) + "\r\n\r\n" + body;
    for ([[maybe_unused]] auto _ : state) {
        auto const context = service::onvif::MakeSoapContext();
        auto* soap = context.get();
        service::onvif::DeviceService device(soap, service::onvif::URIBase(8080, false), nullptr, {}, nullptr);
        soap_register_plugin_arg(soap, http_da, http_da_md5());
        std::stringstream input;
        std::ostringstream output;
        soap->is = &input;
        soap->os = &output;
        input << text << std::endl;
        if (soap_begin_serve(soap) || device.dispatch()) state.SkipWithError("the exchange failed");
        auto answer = std::move(output).str();
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
