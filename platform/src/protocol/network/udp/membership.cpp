#include "protocol/network/udp/membership.h"

#include <netinet/in.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <utility>

namespace zarn::protocol::network::udp {

namespace {

using zarn::network::Interface;

/// Sets IP_ADD_MEMBERSHIP or IP_DROP_MEMBERSHIP.
std::error_code Change(int socket, int option, boost::asio::ip::address_v4 const& group, unsigned index) {
    ip_mreqn request{};
    request.imr_multiaddr.s_addr = htonl(group.to_uint());
    request.imr_ifindex = static_cast<int>(index);
    if (setsockopt(socket, IPPROTO_IP, option, &request, sizeof(request)) == 0) return {};
    return {errno, std::generic_category()};
}

} // namespace

bool Membership::IsSuitable(Interface const& interface) {
    return interface.up && interface.multicast && !interface.networks.empty();
}

bool Membership::Joined::IsOn(Interface const& interface) const {
    return interface.index == index && interface.hardwareAddress == hardwareAddress;
}

std::vector<Membership::Failure> Membership::Follow(int socket, std::span<Interface const> interfaces) {
    std::erase_if(joined, [&](Joined const& each) {
        auto const remains = std::ranges::any_of(
            interfaces, [&](Interface const& interface) { return IsSuitable(interface) && each.IsOn(interface); });
        // Fails when the interface is gone; the kernel forgets the membership all the same.
        if (!remains) Change(socket, IP_DROP_MEMBERSHIP, group, each.index);
        return !remains;
    });
    std::vector<Failure> failures;
    for (auto const& interface : interfaces) {
        auto const isOn = [&](Joined const& each) { return each.IsOn(interface); };
        if (!IsSuitable(interface) || std::ranges::any_of(joined, isOn)) continue;
        // Before joining: nothing may fail between joining and recording it, since joining twice is an error.
        Joined joining{interface.index, interface.hardwareAddress};
        joined.reserve(joined.size() + 1);
        if (auto const error = Change(socket, IP_ADD_MEMBERSHIP, group, interface.index)) {
            failures.push_back({interface.name, error});
        } else {
            joined.push_back(std::move(joining));
        }
    }
    return failures;
}

} // namespace zarn::protocol::network::udp
