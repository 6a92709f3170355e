#include "host/web/web_settings.h"

#include "host/access/access_settings.h"

#include <zarn/configuration/node/primitive.h>
#include <zarn/onvif/settings.h>

#include <cstdint>

namespace zarn::host::web {
namespace {

using configuration::node::Read;
using configuration::schema::Between;

constexpr char ConnectionsPath[] = "settings.limits.connections";
constexpr char ExchangesPath[] = "settings.limits.exchanges";
constexpr char BodyBytesPath[] = "settings.limits.body_bytes";
constexpr char HeaderSecondsPath[] = "settings.limits.header_seconds";
constexpr char IdleSecondsPath[] = "settings.limits.idle_seconds";

} // namespace

std::vector<configuration::Schema> MakeWebSchemas() {
    Limits const limits;
    auto const number = [](auto value) { return static_cast<std::uint32_t>(value); };
    return {
        {zarn::onvif::WebPortPath,
         std::uint16_t{8080},
         "TCP port of the web server",
         {},
         configuration::schema::Port()},
        {ConnectionsPath, number(limits.connections), "Connections to the web server", {}, Between(1, 1000000)},
        {ExchangesPath, number(limits.exchanges), "Requests under way", {}, Between(1, 1000000)},
        {BodyBytesPath, number(limits.bodyBytes), "Bytes of a request's body", {}, Between(1024, 1024 * 1024 * 1024)},
        {HeaderSecondsPath,
         number(limits.headerTime.count()),
         "Seconds that the header of a request may take to arrive",
         {},
         Between(1, 3600)},
        {IdleSecondsPath,
         number(limits.idleTime.count()),
         "Seconds that a connection may be silent, and a body or response may take",
         {},
         Between(1, 86400)},
    };
}

Limits ReadLimits(configuration::node::Root const& root) {
    auto const number = [&](char const* path) { return Read<std::uint32_t>(root, path); };
    return {.connections = number(ConnectionsPath),
            .connectionsPerAddress = ReadConnectionsPerAddress(root),
            .exchanges = number(ExchangesPath),
            .bodyBytes = number(BodyBytesPath),
            .headerTime = std::chrono::seconds(number(HeaderSecondsPath)),
            .idleTime = std::chrono::seconds(number(IdleSecondsPath))};
}

} // namespace zarn::host::web
