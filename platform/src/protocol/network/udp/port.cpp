#include "protocol/network/udp/port.h"

#include <boost/system/system_error.hpp>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/uio.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <stdexcept>

namespace zarn::protocol::network::udp {

namespace {

using boost::asio::ip::address_v4;

void SetOption(int socket, int name, int value) {
    if (setsockopt(socket, IPPROTO_IP, name, &value, sizeof(value)) == 0) return;
    throw boost::system::system_error(errno, boost::system::system_category());
}

/// The interface that received a message.
unsigned FindInterface(msghdr& message) {
    for (auto* each = CMSG_FIRSTHDR(&message); each != nullptr; each = CMSG_NXTHDR(&message, each)) {
        if (each->cmsg_level != IPPROTO_IP || each->cmsg_type != IP_PKTINFO) continue;
        in_pktinfo info{};
        std::memcpy(&info, CMSG_DATA(each), sizeof(info));
        return static_cast<unsigned>(info.ipi_ifindex);
    }
    return 0;
}

} // namespace

void Port::Open(unsigned short number) {
    boost::asio::ip::udp::endpoint const everywhere(address_v4::any(), number);
    try {
        socket.open(everywhere.protocol());
        socket.non_blocking(true);
        SetOption(socket.native_handle(), IP_PKTINFO, 1);
        // Otherwise datagrams for groups that other programs join would arrive here as well.
        SetOption(socket.native_handle(), IP_MULTICAST_ALL, 0);
        // Without SO_REUSEADDR and SO_REUSEPORT: with one of them a second program could take the port as well, and
        // the kernel would give each datagram to either of them.
        socket.bind(everywhere);
    } catch (boost::system::system_error const& error) {
        Close();
        throw std::runtime_error(error.code().message());
    }
}

void Port::Close() noexcept {
    boost::system::error_code ignored;
    socket.close(ignored);
}

boost::system::error_code Port::Read(std::span<char> buffer, Datagram& datagram) {
    sockaddr_in source{};
    iovec place{.iov_base = buffer.data(), .iov_len = buffer.size()};
    alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(in_pktinfo))> control{};
    msghdr message{};
    message.msg_name = &source;
    message.msg_namelen = sizeof(source);
    message.msg_iov = &place;
    message.msg_iovlen = 1;
    message.msg_control = control.data();
    message.msg_controllen = control.size();
    auto const size = recvmsg(socket.native_handle(), &message, 0);
    if (size < 0) return {errno, boost::system::system_category()};
    datagram.size = static_cast<std::size_t>(size);
    datagram.truncated = (message.msg_flags & MSG_TRUNC) != 0;
    datagram.interface = FindInterface(message);
    datagram.source = {address_v4(ntohl(source.sin_addr.s_addr)), ntohs(source.sin_port)};
    return {};
}

} // namespace zarn::protocol::network::udp
