#pragma once

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <optional>
#include <stdexcept>
#include <string>

namespace zarn::test {

inline sockaddr_in MakeEndpoint(std::string const& address, unsigned short port) {
    sockaddr_in endpoint{};
    endpoint.sin_family = AF_INET;
    endpoint.sin_port = htons(port);
    if (inet_pton(AF_INET, address.c_str(), &endpoint.sin_addr) != 1) throw std::invalid_argument(address);
    return endpoint;
}

/// A UDP peer on a plain socket, independent of the code under test.
class Peer {
public:
    /// address  to send from
    /// port     0 for any
    /// option   SO_REUSEADDR, SO_REUSEPORT, or 0
    explicit Peer(std::string const& address, unsigned short port = 0, int option = 0)
        : descriptor(socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0)) {
        constexpr int On = 1;
        if (option != 0) setsockopt(descriptor, SOL_SOCKET, option, &On, sizeof(On));
        auto const endpoint = MakeEndpoint(address, port);
        bound = bind(descriptor, reinterpret_cast<sockaddr const*>(&endpoint), sizeof(endpoint)) == 0;
        in_addr const interface = endpoint.sin_addr;
        setsockopt(descriptor, IPPROTO_IP, IP_MULTICAST_IF, &interface, sizeof(interface));
    }

    ~Peer() { close(descriptor); }

    Peer(Peer const&) = delete;
    Peer& operator=(Peer const&) = delete;

    bool IsBound() const { return bound; }

    unsigned short GetPort() const {
        sockaddr_in endpoint{};
        socklen_t size = sizeof(endpoint);
        getsockname(descriptor, reinterpret_cast<sockaddr*>(&endpoint), &size);
        return ntohs(endpoint.sin_port);
    }

    /// Joins a group on the interface with this address, so that other sockets on the machine could receive it.
    bool Join(std::string const& group, std::string const& address) const {
        ip_mreq const request{MakeEndpoint(group, 0).sin_addr, MakeEndpoint(address, 0).sin_addr};
        return setsockopt(descriptor, IPPROTO_IP, IP_ADD_MEMBERSHIP, &request, sizeof(request)) == 0;
    }

    bool Send(std::string const& text, std::string const& address, unsigned short port) const {
        auto const endpoint = MakeEndpoint(address, port);
        return sendto(descriptor, text.data(), text.size(), 0, reinterpret_cast<sockaddr const*>(&endpoint),
                      sizeof(endpoint)) == static_cast<ssize_t>(text.size());
    }

    /// The next datagram; nullopt on timeout.
    std::optional<std::string> Receive(std::chrono::milliseconds timeout = std::chrono::seconds(60)) const {
        pollfd entry{descriptor, POLLIN, 0};
        if (poll(&entry, 1, static_cast<int>(timeout.count())) != 1) return std::nullopt;
        std::string text(65536, '\0');
        auto const size = recv(descriptor, text.data(), text.size(), 0);
        if (size < 0) return std::nullopt;
        text.resize(static_cast<std::size_t>(size));
        return text;
    }

private:
    int descriptor;
    bool bound = false;
};

/// An unused UDP port below the ephemeral ports, which another program could be given in between, and below those of
/// ReservedPort. Concurrent processes start searching at different ports.
inline unsigned short FindFreePort() {
    constexpr int First = 10'000;
    constexpr int Count = 10'000;
    static std::atomic<int> next = getpid() * 7;
    for (int attempt = 0; attempt < Count; ++attempt) {
        auto const port = static_cast<unsigned short>(First + next++ % Count);
        if (Peer("0.0.0.0", port).IsBound()) return port;
    }
    throw std::runtime_error("no port is free");
}

} // namespace zarn::test
