#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace zarn::test {

/// The server's side of a connection.
struct ServerConnection {
    std::size_t unsent = 0; ///< bytes that the client has not taken yet
};

/// The connections to a port of this machine that the server has not closed, including those that it has not accepted
/// yet. Source: proc_net_tcp in the documentation of the Linux kernel.
std::vector<ServerConnection> ListServerConnections(std::uint16_t port);

} // namespace zarn::test
