#pragma once

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/udp.hpp>

#include <array>
#include <cstdint>
#include <map>
#include <memory>

namespace zarn::host::video::rtsp {

class Session;

/// The two UDP ports of a worker, which all its viewers over UDP share: RTP leaves from the even one, RTCP from the odd
/// one after it, which also receives the viewers' reports. Those count as signs of life. Thread: the worker's.
class UdpPorts {
public:
    /// Binds two free ports on all IPv4 addresses. Throws std::runtime_error when the system gives none.
    explicit UdpPorts(boost::asio::io_context& io);

    UdpPorts(UdpPorts const&) = delete;
    UdpPorts& operator=(UdpPorts const&) = delete;

    /// The even port.
    std::uint16_t GetPort() const { return port; }

    boost::asio::ip::udp::socket& GetRtp() { return rtp; }

    boost::asio::ip::udp::socket& GetRtcp() { return rtcp; }

    /// Reports from this address are signs of life of a session.
    void Expect(boost::asio::ip::udp::endpoint const& peer, std::weak_ptr<Session> session);

    /// They are that no more.
    void Forget(boost::asio::ip::udp::endpoint const& peer, Session const& session);

private:
    bool BindPair();
    void Receive();
    void OnReceived(std::size_t size);

    boost::asio::ip::udp::socket rtp;
    boost::asio::ip::udp::socket rtcp;
    std::uint16_t port = 0;
    std::map<boost::asio::ip::udp::endpoint, std::weak_ptr<Session>> sessions; ///< by where they send RTCP from
    boost::asio::ip::udp::endpoint sender;
    std::array<char, 2048> received{};
};

} // namespace zarn::host::video::rtsp
