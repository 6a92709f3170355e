#pragma once

#include <boost/asio/ip/udp.hpp>
#include <boost/system/error_code.hpp>

#include <functional>
#include <memory>

namespace boost::asio {
class io_context;
}

namespace zarn::container {
class Buffer;
}

namespace zarn::protocol::network::udp {

/// Sends datagrams to one endpoint, from a port that the system chooses and by the interface that its routes choose.
/// Thread: one object is used by one thread at a time; completions run on the context's thread.
class Sender {
public:
    /// Opens no socket yet and does not throw because of the network.
    /// ioContext  must outlive the sender, unless a completion that never ran holds it
    Sender(boost::asio::io_context& ioContext, boost::asio::ip::udp::endpoint endpoint);

    /// Sends not yet complete complete with boost::asio::error::operation_aborted.
    ~Sender();
    Sender(Sender const&) = delete;
    Sender& operator=(Sender const&) = delete;

    /// Sends the buffer as one datagram, without waiting for it.
    /// buffer      not null; kept until the send has completed
    /// completion  called once on the context's thread, never within Send: no error when the system took the datagram,
    ///             else why it did not (too long for a datagram, no route, no socket to be had, ...). It may hold
    ///             the sender. Destroyed without a call when the context is destroyed first.
    void Send(std::shared_ptr<container::Buffer> buffer,
              std::function<void(boost::system::error_code const&)> completion);

private:
    boost::asio::ip::udp::socket socket;
    boost::asio::ip::udp::endpoint endpoint;
};

} // namespace zarn::protocol::network::udp
