#include "host/access/access_settings.h"

#include <zarn/configuration/node/primitive.h>

#include <cstdint>

namespace zarn::host {
namespace {

using configuration::node::Read;
using configuration::schema::Between;

constexpr char AuthenticatePath[] = "settings.authentication.enabled";
constexpr char NonceSecondsPath[] = "settings.authentication.nonce_seconds";
constexpr char ConnectionsPath[] = "settings.limits.connections";
constexpr char ConnectionsPerAddressPath[] = "settings.limits.connections_per_address";
constexpr char FailedLoginsPath[] = "settings.limits.failed_logins_per_minute";

constexpr std::uint32_t MostConnections = 1000000;

} // namespace

std::vector<configuration::Schema> MakeAccessSchemas() {
    AccessSettings const access;
    ConnectionLimits const limits;
    auto const number = [](auto value) { return static_cast<std::uint32_t>(value); };
    return {
        {AuthenticatePath, access.authenticate, "Whether clients have to log in"},
        {NonceSecondsPath,
         number(access.nonceLife.count()),
         "Seconds for which a login challenge is valid",
         {},
         Between(1, number(LongestNonceLife.count()))},
        {ConnectionsPath, number(limits.connections), "Connections in all", {}, Between(1, MostConnections)},
        {ConnectionsPerAddressPath,
         number(limits.connectionsPerAddress),
         "Connections from one address",
         {},
         Between(1, MostConnections)},
        {FailedLoginsPath,
         number(access.failedLoginsPerMinute),
         "Wrong logins from one address within a minute before further ones are refused",
         {},
         Between(1, 10000)},
    };
}

AccessSettings ReadAccessSettings(configuration::node::Root const& root) {
    return {.authenticate = Read<bool>(root, AuthenticatePath),
            .nonceLife = std::chrono::seconds(Read<std::uint32_t>(root, NonceSecondsPath)),
            .failedLoginsPerMinute = Read<std::uint32_t>(root, FailedLoginsPath)};
}

ConnectionLimits ReadConnectionLimits(configuration::node::Root const& root) {
    return {.connections = Read<std::uint32_t>(root, ConnectionsPath),
            .connectionsPerAddress = Read<std::uint32_t>(root, ConnectionsPerAddressPath)};
}

} // namespace zarn::host
