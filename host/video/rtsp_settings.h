#pragma once

#include "host/access/access_settings.h"
#include "host/access/failed_logins.h"

#include <zarn/configuration/node/root.h>
#include <zarn/configuration/schema.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace zarn::host::video {

/// The greatest `settings.limits.rtsp_connections`: with the other connections, it stays below the open files that the
/// service manager grants.
inline constexpr std::uint32_t MostRtspConnections = 10000;

/// How the RTSP server is set up.
struct RtspSettings {
    /// TCP port on all addresses; 0 binds a free one.
    std::uint16_t port = 0;

    /// Whether clients must authenticate (digest, user `admin`).
    bool authenticate = false;

    /// HA1 of `admin` in zarn::authentication::Realm, 32 lower-case hexadecimal digits; used when `authenticate` is
    /// set. With anything else every login fails.
    std::string ha1 = {};

    /// For new connections; further ones are closed at once. A wall of recorders fits in.
    ConnectionLimits limits = {.connections = 1000};

    /// Slows down guessing passwords; never null.
    std::shared_ptr<FailedLogins> failedLogins = std::make_shared<FailedLogins>();
};

/// Describes `settings.rtsp_port` and `settings.limits.rtsp_connections`.
std::vector<configuration::Schema> MakeRtspSchemas();

/// The bounds of the RTSP server (`settings.limits`).
ConnectionLimits ReadRtspLimits(configuration::node::Root const& root);

} // namespace zarn::host::video
