#pragma once

#include <boost/asio/any_io_executor.hpp>
#include <boost/asio/ip/udp.hpp>
#include <boost/system/error_code.hpp>

#include <cstddef>
#include <span>
#include <utility>

namespace zarn::protocol::network::udp {

/// What is known of a datagram besides its bytes.
struct Datagram {
    std::size_t size = 0;   ///< of what is in the buffer, in bytes
    bool truncated = false; ///< there was more
    unsigned interface = 0; ///< the kernel's index of the interface that received it
    boost::asio::ip::udp::endpoint source;
};

/// A UDP port of this machine over IPv4 on all its addresses, taken by this socket alone.
class Port {
public:
    explicit Port(boost::asio::any_io_executor const& executor) : socket(executor) {}

    /// Throws std::runtime_error with the system's reason; the port is not open then.
    void Open(unsigned short number);

    void Close() noexcept;

    bool IsOpen() const noexcept { return socket.is_open(); }

    int GetDescriptor() { return socket.native_handle(); }

    /// Calls `handler` with an error code when there is something to read.
    template <class Handler>
    void Wait(Handler&& handler) {
        socket.async_wait(boost::asio::ip::udp::socket::wait_read, std::forward<Handler>(handler));
    }

    /// Reads a datagram into `buffer`, without waiting.
    boost::system::error_code Read(std::span<char> buffer, Datagram& datagram);

private:
    boost::asio::ip::udp::socket socket;
};

} // namespace zarn::protocol::network::udp
