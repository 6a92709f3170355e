#pragma once

#include <boost/asio/ip/address_v4.hpp>
#include <boost/asio/ip/network_v4.hpp>

#include <span>
#include <string>
#include <vector>

namespace zarn::network {

/// A network interface as the kernel reports it at one moment.
struct Interface {
    unsigned index = 0;                  ///< the kernel's interface index
    std::string name;                    ///< for example "eth0"
    std::string hardwareAddress;         ///< lower-case hex pairs joined with ":"; empty when the interface has none
    boost::asio::ip::address_v4 address; ///< its first IPv4 address; 0.0.0.0 when it has none
    bool up = false;                     ///< it is switched on
    bool loopback = false;               ///< it reaches this machine only
    bool multicast = false;              ///< it can send and receive multicast datagrams
    /// Every IPv4 address with the length of its network's prefix; on a point-to-point link the peer's as well.
    std::vector<boost::asio::ip::network_v4> networks{};

    bool operator==(Interface const&) const = default;
};

/// Every interface of this network namespace, in the order of the kernel's interface index.
/// Throws std::system_error when the kernel does not answer. Thread: any.
std::vector<Interface> ReadInterfaces();

/// The address of the first interface that is up, has an address and is not a loopback; 127.0.0.1 without such an
/// interface.
boost::asio::ip::address_v4 ChooseLocalAddress(std::span<Interface const> interfaces);

} // namespace zarn::network
