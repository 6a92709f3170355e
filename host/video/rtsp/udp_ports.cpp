#include "host/video/rtsp/udp_ports.h"

#include "host/video/rtp/sender.h"
#include "host/video/rtsp/session.h"

#include <boost/asio/buffer.hpp>

#include <stdexcept>
#include <string_view>
#include <utility>

namespace zarn::host::video::rtsp {

using boost::asio::ip::udp;

namespace {

/// How often two ports are tried before the system counts as having none.
constexpr int MostTries = 64;

bool Bind(udp::socket& socket, std::uint16_t port) {
    boost::system::error_code error;
    socket.close(error);
    socket.open(udp::v4());
    socket.bind({udp::v4(), port}, error);
    return !error;
}

} // namespace

UdpPorts::UdpPorts(boost::asio::io_context& io) : rtp(io), rtcp(io) {
    int tries = 0;
    while (!BindPair()) {
        if (++tries == MostTries) throw std::runtime_error("the system gives no two UDP ports for RTP");
    }
    rtp.non_blocking(true);
    rtcp.non_blocking(true);
    Receive();
}

bool UdpPorts::BindPair() {
    if (!Bind(rtp, 0)) return false;
    port = rtp.local_endpoint().port();
    return port % 2 == 0 && Bind(rtcp, static_cast<std::uint16_t>(port + 1));
}

void UdpPorts::Expect(udp::endpoint const& peer, std::weak_ptr<Session> session) {
    sessions.insert_or_assign(peer, std::move(session));
}

void UdpPorts::Forget(udp::endpoint const& peer, Session const& session) {
    auto const found = sessions.find(peer);
    if (found == sessions.end()) return;
    auto const present = found->second.lock();
    if (!present || present.get() == &session) sessions.erase(found);
}

void UdpPorts::Receive() {
    rtcp.async_receive_from(boost::asio::buffer(received), sender,
                            [this](boost::system::error_code error, std::size_t size) {
                                if (error == boost::asio::error::operation_aborted) return;
                                if (!error) OnReceived(size);
                                Receive();
                            });
}

void UdpPorts::OnReceived(std::size_t size) {
    auto const found = sessions.find(sender);
    if (found == sessions.end() || !rtp::IsRtcp({received.data(), size})) return;
    if (auto const session = found->second.lock()) session->Touch(Session::Clock::now());
}

} // namespace zarn::host::video::rtsp
