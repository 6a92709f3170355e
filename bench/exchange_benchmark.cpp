// One SOAP exchange (GetSystemDateAndTime) through Manager::Post, against what gSOAP alone needs for it: the same
// context, the digest plugin, the streams and one service. Run on one thread that waits for each answer.

#include <service/onvif/device.h>
#include <service/onvif/manager.h>
#include <service/onvif/soap_context.h>
#include <zarn/authentication/engine.h>
#include <zarn/configuration/node/root.h>
#include <zarn/container/buffer.h>
#include <zarn/web/request.h>

#include <benchmark/benchmark.h>
#include <httpda.h>

#include <sstream>
#include <thread>

namespace {

using namespace zarn;

constexpr char Body[] =
    R"(<?xml version="1.0" encoding="UTF-8"?><s:Envelope xmlns:s="http://www.w3.org/2003/05/soap-envelope">)"
    R"(<s:Body><GetSystemDateAndTime xmlns="http://www.onvif.org/ver10/device/wsdl"/></s:Body></s:Envelope>)";

class Request : public web::Request {
public:
    protocol::network::http::Method GetMethod() const override { return protocol::network::http::Method::Post; }

    std::string_view GetTarget() const override { return "/onvif/device_service"; }

    std::string_view GetBody() const override { return Body; }

    std::map<std::string_view, std::string_view> GetFields() const override {
        return {{"Host", "device:8080"}, {"Content-Type", "application/soap+xml; charset=utf-8"}};
    }
};

void BareExchange(benchmark::State& state) {
    std::string const text = "POST /onvif/device_service HTTP/1.1\r\nHost: device:8080\r\n"
                             "Content-Type: application/soap+xml; charset=utf-8\r\nContent-Length: " +
                             std::to_string(sizeof(Body) - 1) + "\r\n\r\n" + Body;
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
    for ([[maybe_unused]] auto _ : state) {
        auto const pending = manager.Post(std::make_shared<Request>());
        for (;;) {
            auto const data = pending->GetData();
            if (data.GetState() == web::response::State::Complete) {
                if (static_cast<int>(data.GetStatus()) != 200) state.SkipWithError("the exchange failed");
                break;
            }
            std::this_thread::yield();
        }
    }
}

BENCHMARK(BareExchange)->UseRealTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(ManagerPost)->UseRealTime()->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();
