#include "host/video/rtsp_settings.h"

#include <zarn/configuration/node/primitive.h>
#include <zarn/onvif/settings.h>

namespace zarn::host::video {
namespace {

constexpr char ConnectionsPath[] = "settings.limits.rtsp_connections";

} // namespace

std::vector<configuration::Schema> MakeRtspSchemas() {
    return {{zarn::onvif::RtspPortPath,
             std::uint16_t{8554},
             "TCP port of the RTSP server",
             {},
             configuration::schema::Port()},
            {ConnectionsPath,
             static_cast<std::uint32_t>(RtspSettings().limits.connections),
             "Connections to the RTSP server",
             {},
             configuration::schema::Between(1, MostRtspConnections)}};
}

ConnectionLimits ReadRtspLimits(configuration::node::Root const& root) {
    return {.connections = configuration::node::Read<std::uint32_t>(root, ConnectionsPath),
            .connectionsPerAddress = ReadConnectionsPerAddress(root)};
}

} // namespace zarn::host::video
