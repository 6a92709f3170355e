#include <zarn/protocol/network/udp/admission.h>

#include <algorithm>

namespace zarn::protocol::network::udp {

namespace {

using boost::asio::ip::address_v4;
using boost::asio::ip::network_v4;
using zarn::network::Interface;

bool Contains(network_v4 const& network, address_v4 const& address) {
    auto const difference = network.address().to_uint() ^ address.to_uint();
    return (difference & network.netmask().to_uint()) == 0;
}

bool IsConnected(Interface const& interface, address_v4 const& address) {
    return std::ranges::any_of(interface.networks, [&](network_v4 const& each) { return Contains(each, address); });
}

bool IsOwn(std::span<Interface const> interfaces, address_v4 const& address) {
    return std::ranges::any_of(interfaces, [&](Interface const& interface) {
        return std::ranges::find(interface.networks, address, &network_v4::address) != interface.networks.end();
    });
}

} // namespace

bool IsNearby(std::span<Interface const> interfaces, unsigned index, address_v4 const& source) {
    auto const found = std::ranges::find(interfaces, index, &Interface::index);
    if (found == interfaces.end()) return false;
    return IsConnected(*found, source) || (found->loopback && IsOwn(interfaces, source));
}

} // namespace zarn::protocol::network::udp
