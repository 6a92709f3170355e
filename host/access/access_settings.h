#pragma once

#include <zarn/configuration/node/root.h>
#include <zarn/configuration/schema.h>

#include <chrono>
#include <cstddef>
#include <vector>

namespace zarn::host {

/// The login settings that the web server and the RTSP server share.
struct AccessSettings {
    bool authenticate = true;               ///< whether clients have to log in
    std::chrono::seconds nonceLife{300};    ///< how long a nonce of the web server is accepted
    std::size_t failedLoginsPerMinute = 60; ///< of one address, on both servers together
};

/// The greatest AccessSettings::nonceLife.
inline constexpr std::chrono::seconds LongestNonceLife{300};

/// How many connections a server keeps; counted for each server.
struct ConnectionLimits {
    std::size_t connections = 1024;          ///< in all
    std::size_t connectionsPerAddress = 256; ///< from one address
};

/// Describes `settings.authentication` and those of `settings.limits` that both servers obey.
std::vector<configuration::Schema> MakeAccessSchemas();

AccessSettings ReadAccessSettings(configuration::node::Root const& root);

ConnectionLimits ReadConnectionLimits(configuration::node::Root const& root);

} // namespace zarn::host
