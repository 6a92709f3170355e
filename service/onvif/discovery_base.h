#pragma once

#include <zarn/asio/io_context.h>
#include <zarn/protocol/network/udp/operation.h>

#include <boost/asio/ip/address.hpp>
#include <boost/asio/ip/udp.hpp>
#include <boost/asio/steady_timer.hpp>

#include <atomic>
#include <chrono>
#include <memory>
#include <string>
#include <string_view>

namespace zarn::container {
class Buffer;
}

namespace zarn::onvif::discovery {
class Request;
class Response;
} // namespace zarn::onvif::discovery

namespace zarn::protocol::network::udp {
class Receiver;
}

namespace zarn::service::onvif {

/// The group that WS-Discovery clients send their probes to (WS-Discovery 2005/04, section 2.4).
extern boost::asio::ip::address const MulticastAddress;

/// Receives WS-Discovery messages and sends the answers that the derived class gives, each to the source of its
/// message.
///
/// The derived class calls Begin at the end of its construction and End at the start of its destruction; HandleReceive
/// is called only in between. While the port is taken, the failure is logged and setup is retried.
class DiscoveryBase {
public:
    /// The time from a failed setup to the next.
    static constexpr std::chrono::milliseconds RetryInterval = std::chrono::seconds(10);

    explicit DiscoveryBase(std::chrono::milliseconds retryInterval = RetryInterval);
    virtual ~DiscoveryBase();

    DiscoveryBase(DiscoveryBase const&) = delete;
    DiscoveryBase& operator=(DiscoveryBase const&) = delete;

    /// Whether messages are taken that come from networks which the machine is not connected to; false at first.
    /// Thread: any.
    void AllowAnySource(bool allowed) noexcept { anySource = allowed; }

    /// The answer to a message; one that is not valid is not sent. Thread: the responder's own.
    virtual zarn::onvif::discovery::Response HandleReceive(zarn::onvif::discovery::Request const& request) = 0;

protected:
    /// Makes the first attempt to receive; a failure is logged and setup is retried. To be called once, as the last act
    /// of construction. Throws std::bad_alloc when not even the next attempt can be prepared, and has called End then.
    void Begin();

    /// Ends receiving, retrying and sending; nothing of this object runs once it has returned. To be called as the
    /// first act of destruction, on another thread than the responder's.
    void End();

private:
    void TrySetup();
    void RetryLater();
    protocol::network::udp::Operation HandleReceiveFrom(boost::system::error_code const& error,
                                                        std::shared_ptr<container::Buffer> const& datagram,
                                                        boost::asio::ip::udp::endpoint const& source);
    void Answer(std::string_view text, boost::asio::ip::udp::endpoint const& source);
    void Send(std::string xml, boost::asio::ip::udp::endpoint const& destination);

    std::chrono::milliseconds const retryInterval;
    std::atomic<bool> anySource = false;
    asio::IoContext ioContext;
    std::unique_ptr<protocol::network::udp::Receiver> receiver;
    boost::asio::steady_timer retryTimer;
};

} // namespace zarn::service::onvif
