#include "host/access/access_settings.h"

#include <zarn/configuration/node/primitive.h>

#include <cstdint>

namespace zarn::host {
namespace {

using configuration::node::Read;
using configuration::schema::Between;

constexpr char AuthenticatePath[] = "settings.authentication.enabled";
constexpr char NonceSecondsPath[] = "settings.authentication.nonce_seconds";
constexpr char ConnectionsPerAddressPath[] = "settings.limits.connections_per_address";
constexpr char FailedLoginsPath[] = "settings.limits.failed_logins_per_minute";

} // namespace

std::vector<configuration::Schema> MakeAccessSchemas() {
    AccessSettings const access;
    auto const number = [](auto value) { return static_cast<std::uint32_t>(value); };
    return {
        {AuthenticatePath, access.authenticate, "Whether clients have to log in"},
        {NonceSecondsPath,
         number(access.nonceLife.count()),
         "Seconds for which a login challenge is valid",
         {},
         Between(1, number(LongestNonceLife.count()))},
        {ConnectionsPerAddressPath,
         number(ConnectionLimits().connectionsPerAddress),
         "Connections from one address, to each server",
         {},
         Between(1, 1000000)},
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

std::size_t ReadConnectionsPerAddress(configuration::node::Root const& root) {
    return Read<std::uint32_t>(root, ConnectionsPerAddressPath);
}

} // namespace zarn::host
