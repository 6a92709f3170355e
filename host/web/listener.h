#pragma once

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>

#include <cstdint>

namespace zarn::host::web {

/// A bound TCP port. Connections queue up from construction on, until a Server accepts them.
class Listener {
public:
    /// Binds the port on all IPv4 addresses of the machine; 0 binds a free one.
    /// Throws std::runtime_error that names the port and the reason when it cannot be bound.
    Listener(boost::asio::io_context& io, std::uint16_t port);

    /// The bound port.
    std::uint16_t GetPort() const noexcept { return port; }

    /// Moves the acceptor out; it runs on a strand of its own.
    boost::asio::ip::tcp::acceptor Release() { return std::move(acceptor); }

private:
    boost::asio::ip::tcp::acceptor acceptor;
    std::uint16_t port;
};

} // namespace zarn::host::web
