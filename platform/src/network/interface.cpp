#include <zarn/network/interface.h>

#include <boost/algorithm/hex.hpp>
#include <ifaddrs.h>
#include <linux/if_packet.h>
#include <net/if.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <iterator>
#include <map>
#include <memory>
#include <string_view>
#include <system_error>
#include <utility>

namespace zarn::network {

namespace {

using boost::asio::ip::address_v4;
using boost::asio::ip::network_v4;

/// Lower-case hex pairs joined with ":".
std::string FormatHardwareAddress(std::span<unsigned char const> bytes) {
    std::string text;
    for (auto const byte : bytes) {
        if (!text.empty()) text += ':';
        boost::algorithm::hex_lower(&byte, &byte + 1, std::back_inserter(text));
    }
    return text;
}

/// The socket address as the structure of its family.
template <class T>
T Read(sockaddr const* address) {
    T value{};
    std::memcpy(&value, address, sizeof(value));
    return value;
}

Interface MakeInterface(ifaddrs const& entry) {
    Interface interface;
    interface.name = entry.ifa_name;
    if (entry.ifa_addr != nullptr) {
        auto const link = Read<sockaddr_ll>(entry.ifa_addr);
        auto const length = std::min<std::size_t>(link.sll_halen, std::size(link.sll_addr));
        interface.index = static_cast<unsigned>(link.sll_ifindex);
        interface.hardwareAddress = FormatHardwareAddress(std::span(link.sll_addr).first(length));
    } else {
        interface.index = if_nametoindex(entry.ifa_name);
    }
    interface.up = (entry.ifa_flags & IFF_UP) != 0;
    interface.loopback = (entry.ifa_flags & IFF_LOOPBACK) != 0;
    interface.multicast = (entry.ifa_flags & IFF_MULTICAST) != 0;
    return interface;
}

address_v4 ReadAddress(sockaddr const* address) {
    return address_v4(ntohl(Read<sockaddr_in>(address).sin_addr.s_addr));
}

/// The networks that an address connects to.
std::vector<network_v4> MakeNetworks(ifaddrs const& entry) {
    constexpr unsigned short HostPrefix = 32;
    auto const address = ReadAddress(entry.ifa_addr);
    if (entry.ifa_netmask == nullptr) return {network_v4(address, HostPrefix)};
    auto const mask = ReadAddress(entry.ifa_netmask);
    if ((entry.ifa_flags & IFF_POINTOPOINT) == 0 || entry.ifa_dstaddr == nullptr) return {network_v4(address, mask)};
    return {network_v4(address, HostPrefix), network_v4(ReadAddress(entry.ifa_dstaddr), mask)};
}

/// The name of the interface that an address belongs to: the label of an address may add ":" and more.
std::string_view WithoutLabel(std::string_view name) { return name.substr(0, name.find(':')); }

} // namespace

std::vector<Interface> ReadInterfaces() {
    ifaddrs* raw = nullptr;
    if (getifaddrs(&raw) != 0) {
        throw std::system_error(errno, std::generic_category(), "Failed to read the network interfaces");
    }
    std::unique_ptr<ifaddrs, decltype(&freeifaddrs)> const list(raw, &freeifaddrs);
    std::vector<Interface> interfaces;
    std::map<std::string, std::vector<network_v4>, std::less<>> networks;
    for (auto const* entry = list.get(); entry != nullptr; entry = entry->ifa_next) {
        // An interface without hardware address, such as a tunnel, comes without any.
        auto const family = entry->ifa_addr == nullptr ? AF_PACKET : entry->ifa_addr->sa_family;
        if (family == AF_PACKET) interfaces.push_back(MakeInterface(*entry));
        if (family != AF_INET) continue;
        auto& known = networks[std::string(WithoutLabel(entry->ifa_name))];
        std::ranges::copy(MakeNetworks(*entry), std::back_inserter(known));
    }
    for (auto& interface : interfaces) {
        auto const found = networks.find(interface.name);
        if (found == networks.end()) continue;
        interface.address = found->second.front().address();
        interface.networks = std::move(found->second);
    }
    std::ranges::sort(interfaces, {}, &Interface::index);
    return interfaces;
}

address_v4 ChooseLocalAddress(std::span<Interface const> interfaces) {
    auto const found = std::ranges::find_if(
        interfaces, [](Interface const& each) { return each.up && !each.loopback && !each.address.is_unspecified(); });
    return found == interfaces.end() ? address_v4::loopback() : found->address;
}

} // namespace zarn::network
