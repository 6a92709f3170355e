// waiting_memory bare|module COUNT: resident memory per waiting exchange, in KiB. "bare" is a gSOAP exchange that has
// read its request and waits on its own thread: context, digest plugin, streams and one service. "module" is
// PullMessages through Manager::Post; before its result comes the resident memory of the whole process, that is, the
// module and the host's libraries alone.

#include "bare_exchange.h"
#include "operations.h"
#include "post.h"

#include <service/onvif/device.h>
#include <service/onvif/manager.h>
#include <zarn/authentication/engine.h>
#include <zarn/configuration/node/root.h>
#include <zarn/onvif/events/subscription_gauge.h>
#include <zarn/web/response/pending.h>

#include <barrier>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <future>
#include <iostream>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace zarn;

long ReadResidentKilobytes() {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.starts_with("VmRSS:")) return std::atol(line.c_str() + 6);
    return 0;
}

void Wait(std::string const& text, std::barrier<>& ready, std::shared_future<void> const& over) {
    bench::BareExchange exchange(text);
    service::onvif::DeviceService const device(exchange.GetContext(), service::onvif::URIBase(8080, false), nullptr, {},
                                               nullptr);
    if (!exchange.Begin()) std::cerr << "the request was not read\n";
    ready.arrive_and_wait();
    over.wait();
}

double MeasureBare(int count) {
    auto const text = bench::ToText(bench::Request(bench::PullMessages, "/onvif/events_service"));
    std::barrier ready(count + 1);
    std::promise<void> end;
    auto const over = end.get_future().share();
    auto const before = ReadResidentKilobytes();
    std::vector<std::thread> threads;
    threads.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) threads.emplace_back([&] { Wait(text, ready, over); });
    ready.arrive_and_wait();
    auto const after = ReadResidentKilobytes();
    end.set_value();
    for (auto& thread : threads) thread.join();
    return static_cast<double>(after - before) / count;
}

double MeasureModule(int count) {
    ZarnAuthenticationEngine engine;
    engine.SetEnabled(false);
    service::onvif::Manager manager(&engine, std::make_shared<configuration::node::Root>(), nullptr, {});
    bench::Post(manager, std::make_shared<bench::Request>(
                             R"(<CreatePullPointSubscription xmlns="http://www.onvif.org/ver10/events/wsdl"/>)"));
    auto const path =
        "/onvif/events_service/Subscription?Idx=" + std::to_string(onvif::events::GetSubscriptions().front().id);
    auto const before = ReadResidentKilobytes();
    std::cout << "process " << before << '\n';
    std::vector<std::shared_ptr<web::response::Pending>> pending;
    for (int i = 0; i < count; ++i)
        pending.push_back(manager.Post(std::make_shared<bench::Request>(bench::PullMessages, path)));
    // All exchanges are waiting once the memory has been stable for a while.
    long after = 0;
    for (int quiet = 0; quiet < 20; std::this_thread::sleep_for(std::chrono::milliseconds(50))) {
        auto const now = ReadResidentKilobytes();
        quiet = now == after ? quiet + 1 : 0;
        after = now;
    }
    for (auto const& exchange : pending)
        if (exchange->GetData().GetState() == web::response::State::Complete) std::cerr << "a pull did not wait\n";
    return static_cast<double>(after - before) / count;
}

} // namespace

int main(int arguments, char** argument) {
    int const count = arguments == 3 ? std::atoi(argument[2]) : 0;
    if (count < 1) {
        std::cerr << "usage: waiting_memory bare|module COUNT\n";
        return 2;
    }
    std::cout << (std::string(argument[1]) == "bare" ? MeasureBare(count) : MeasureModule(count)) << '\n';
}
