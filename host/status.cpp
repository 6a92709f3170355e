#include "host/status.h"

#include <zarn/configuration/node/primitive.h>
#include <zarn/onvif/settings.h>

#include <boost/json/array.hpp>
#include <boost/json/object.hpp>

#include <algorithm>
#include <cstdint>
#include <string>

namespace zarn::host {
namespace {

namespace json = boost::json;
using configuration::node::Read;

json::object MakeChannel(video::ChannelStatus const& channel) {
    auto const& info = channel.info;
    return {
        {"id", channel.id},
        {"state", json::string(video::ToString(channel.state))},
        {"detail", channel.detail},
        {"codec", info.GetCodec()},
        {"width", info.GetResolution().first},
        {"height", info.GetResolution().second},
        {"rate", std::to_string(info.GetFrameRateNumerator()) + '/' + std::to_string(info.GetFrameRateDenominator())},
        {"frame_age_ms", channel.frameAge ? json::value(channel.frameAge->count()) : json::value(nullptr)},
        {"restarts", channel.restarts}};
}

} // namespace

json::value MakeStatus(configuration::node::Root const& configuration, video::Engine const& engine,
                       web::Admission const& admission, events::MqttStatus const& mqtt, bool tls,
                       std::chrono::seconds uptime) {
    auto const channels = engine.GetStatus();
    json::array list;
    for (auto const& channel : channels) list.push_back(MakeChannel(channel));
    bool const failed = std::any_of(channels.begin(), channels.end(),
                                    [](auto const& channel) { return channel.state == video::ChannelState::Failed; });
    bool const degraded = failed || mqtt.state == events::MqttState::Waiting;
    return json::object{
        {"status", degraded ? "degraded" : "ok"},
        {"version", ZARN_VERSION},
        {"uptime_seconds", uptime.count()},
        {"module", {{"onvif", "serving"}, {"enabled", Read<bool>(configuration, zarn::onvif::EnabledPath)}}},
        {"listeners",
         {{"web",
           {{"port", Read<std::uint16_t>(configuration, zarn::onvif::WebPortPath)},
            {"tls", tls},
            {"connections", admission.GetConnections()},
            {"exchanges", admission.GetExchanges()}}},
          {"rtsp", {{"port", engine.GetPort()}}}}},
        {"events",
         {{"mqtt", events::ToJson(mqtt)}, {"subscriptions", events::ToJson(zarn::onvif::events::GetSubscriptions())}}},
        {"channels", std::move(list)}};
}

} // namespace zarn::host
