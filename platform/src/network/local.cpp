#include <zarn/io/unique_descriptor.h>
#include <zarn/network/address.h>
#include <zarn/network/interface.h>
#include <zarn/network/local.h>

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>
#include <optional>
#include <system_error>

namespace zarn::network {

namespace {

using boost::asio::ip::address_v4;

/// The address that the kernel would send from to the world at large; empty when it has no route, or one that does not
/// leave this machine. Connecting a UDP socket makes it choose and sends nothing.
std::optional<address_v4> ProbeRoute() noexcept {
    // TEST-NET-2 (RFC 5737): nobody's network, so that only the default route leads there.
    auto const target = address::v4::Make(198, 51, 100, 1);
    constexpr in_port_t DiscardPort = 9;
    io::UniqueDescriptor const descriptor(socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    sockaddr_in endpoint{};
    endpoint.sin_family = AF_INET;
    endpoint.sin_port = htons(DiscardPort);
    endpoint.sin_addr.s_addr = htonl(target.to_uint());
    socklen_t length = sizeof(endpoint);
    auto* const generic = reinterpret_cast<sockaddr*>(&endpoint);
    if (!descriptor || connect(descriptor.Get(), generic, length) != 0) return std::nullopt;
    if (getsockname(descriptor.Get(), generic, &length) != 0) return std::nullopt;
    address_v4 const address(ntohl(endpoint.sin_addr.s_addr));
    if (address.is_loopback() || address.is_unspecified()) return std::nullopt;
    return address;
}

/// Nothing when the kernel does not answer: the caller has a last resort.
std::vector<Interface> ReadInterfacesIfPossible() {
    try {
        return ReadInterfaces();
    } catch (std::system_error const&) {
        return {};
    }
}

} // namespace

address_v4 GetLocalIPAddress() {
    if (auto const routed = ProbeRoute()) return *routed;
    return ChooseLocalAddress(ReadInterfacesIfPossible());
}

std::string MakeLocalUrl(std::string_view scheme, std::uint16_t port) {
    return std::string(scheme) + "://" + GetLocalIPAddress().to_string() + ':' + std::to_string(port);
}

std::string MakeLocalWebUrl(bool tls, std::uint16_t port) { return MakeLocalUrl(tls ? "https" : "http", port); }

std::string GetHostname() {
    std::array<char, HOST_NAME_MAX + 1> name{};
    if (gethostname(name.data(), name.size()) != 0) {
        throw std::system_error(errno, std::generic_category(), "Failed to read the host name");
    }
    return name.data();
}

} // namespace zarn::network
