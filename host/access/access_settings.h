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
    std::size_t connections = 1024;          ///< in all; each server has a setting of its own
    std::size_t connectionsPerAddress = 256; ///< from one address; one setting for both servers
};

/// Describes `settings.authentication` and those of `settings.limits` that both servers obey.
std::vector<configuration::Schema> MakeAccessSchemas();

AccessSettings ReadAccessSettings(configuration::node::Root const& root);

/// `settings.limits.connections_per_address`
std::size_t ReadConnectionsPerAddress(configuration::node::Root const& root);

} // namespace zarn::host
