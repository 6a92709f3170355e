// GetProfiles of both media services through Manager::Post, with all configurations of a profile, against the number of
// channels. The time must grow linearly. A single thread waits for each answer.

#include "post.h"

#include <service/onvif/manager.h>
#include <zarn/authentication/engine.h>
#include <zarn/configuration/node/root.h>
#include <zarn/configuration/schema.h>

#include <benchmark/benchmark.h>
#include <boost/json/object.hpp>

#include <memory>
#include <string>

namespace {

using namespace zarn;

std::shared_ptr<configuration::node::Root> MakeConfiguration(std::int64_t channels) {
    using configuration::Schema;
    auto root = std::make_shared<configuration::node::Root>();
    root->Schema({Schema::Collection("channels", {Schema("name", "", "name")}, "channels")});
    boost::json::object entries;
    for (std::int64_t i = 1; i <= channels; ++i)
        entries[std::to_string(i)] = boost::json::object{{"name", "Channel " + std::to_string(i)}};
    root->FromJson(boost::json::object{{"channels", entries}});
    return root;
}

void GetProfiles(benchmark::State& state, char const* operation) {
    ZarnAuthenticationEngine engine;
    auto const info = [](std::string const&) { return meta::data::VideoInfo({1920, 1080}, "video/x-h264", 25, 1); };
    service::onvif::Manager manager(&engine, MakeConfiguration(state.range(0)), info, {});
    auto const request = std::make_shared<bench::Request>(operation);
    for ([[maybe_unused]] auto _ : state)
        if (bench::Post(manager, request) != 200) state.SkipWithError("the exchange failed");
    state.SetComplexityN(state.range(0));
}

constexpr char Media[] = R"(<GetProfiles xmlns="http://www.onvif.org/ver10/media/wsdl"/>)";
constexpr char Media2[] =
    R"(<GetProfiles xmlns="http://www.onvif.org/ver20/media/wsdl"><Type>All</Type></GetProfiles>)";

void Sizes(benchmark::internal::Benchmark* bench) {
    bench->RangeMultiplier(4)->Range(16, 1024)->Complexity(benchmark::oN)->UseRealTime()->Unit(benchmark::kMillisecond);
}

BENCHMARK_CAPTURE(GetProfiles, Media, Media)->Apply(Sizes);
BENCHMARK_CAPTURE(GetProfiles, Media2, Media2)->Apply(Sizes);

} // namespace

BENCHMARK_MAIN();
