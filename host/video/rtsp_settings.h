#pragma once

#include "host/access/access_settings.h"
#include "host/access/failed_logins.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace zarn::host::video {

/// How the RTSP server is set up.
struct RtspSettings {
    /// TCP port on all addresses; 0 binds a free one.
    std::uint16_t port = 0;

    /// Whether clients must authenticate (digest, user `admin`).
    bool authenticate = false;

    /// HA1 of `admin` in zarn::authentication::Realm, 32 lower-case hexadecimal digits; used when `authenticate` is
    /// set. With anything else every login fails.
    std::string ha1 = {};

    /// For new connections, and never more than rtsp::Connections::Maximum; further ones are closed at once.
    ConnectionLimits limits = {};

    /// Slows down guessing passwords; never null.
    std::shared_ptr<FailedLogins> failedLogins = std::make_shared<FailedLogins>();
};

/// Describes `settings.rtsp_port`.
std::vector<configuration::Schema> MakeRtspSchemas();

} // namespace zarn::host::video
