#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace zarn::test {

/// The server's side of a connection.
struct ServerConnection {
    std::size_t unsent = 0; ///< bytes not yet acknowledged by the client
};

/// Connections to a local port that the server has not closed, including those not yet accepted. Source: proc_net_tcp
/// in the Linux kernel documentation.
std::vector<ServerConnection> ListServerConnections(std::uint16_t port);

} // namespace zarn::test
