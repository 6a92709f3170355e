#pragma once

#include "host/failed_logins.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace zarn::host::video {

/// The bounds of the RTSP server that the configuration sets. They hold for connections that come.
struct RtspLimits {
    /// Connections in all; further ones are closed at once. More than rtsp::Connections::Maximum are never taken.
    std::size_t connections = 1024;

    /// Connections from one address; further ones are closed at once.
    std::size_t connectionsPerAddress = 256;
};

/// How the RTSP server is set up.
struct RtspSettings {
    /// TCP port on all addresses; 0 binds a free one.
    std::uint16_t port = 0;

    /// Whether clients must authenticate (digest, user `admin`).
    bool authenticate = false;

    /// HA1 of `admin` in zarn::authentication::Realm, 32 lower-case hexadecimal digits; used when `authenticate` is
    /// set.
    std::string ha1 = {};

    RtspLimits limits = {};

    /// Slows down who guesses passwords; never null.
    std::shared_ptr<FailedLogins> failedLogins = std::make_shared<FailedLogins>();
};

} // namespace zarn::host::video
