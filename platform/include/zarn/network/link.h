#pragma once

#include <boost/asio/ip/network_v4.hpp>

#include <string>
#include <vector>

namespace zarn::network {

/// An interface that is up, as the IPv4 networks behind it see it.
struct Link {
    unsigned index = 0;          ///< the kernel's interface index
    std::string name;            ///< for example "eth0"
    std::string hardwareAddress; ///< as Interface has it; tells a new interface from an older one of the same index
    bool multicast = false;      ///< it can send and receive multicast datagrams
    bool loopback = false;
    /// Each IPv4 address of the interface with the length of its network's prefix; for a point-to-point link the
    /// address of the peer.
    std::vector<boost::asio::ip::network_v4> networks;

    bool operator==(Link const&) const = default;
};

/// The interfaces of this network namespace that are up and have an IPv4 address, in the order of the kernel's interface
/// index. Throws std::system_error when the kernel does not answer. Thread: any.
std::vector<Link> ReadLinks();

} // namespace zarn::network
