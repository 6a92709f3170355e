#pragma once

#include <zarn/network/interface.h>

#include <boost/asio/ip/address_v4.hpp>

#include <span>
#include <string>
#include <system_error>
#include <vector>

namespace zarn::protocol::network::udp {

/// The interfaces on which a socket is a member of a multicast group. Not thread-safe.
class Membership {
public:
    /// An interface on which the group could not be joined.
    struct Failure {
        std::string interface; ///< its name
        std::error_code reason;

        bool operator==(Failure const&) const = default;
    };

    explicit Membership(boost::asio::ip::address_v4 const& group) : group(group) {}

    /// True for an interface on which the group is to be joined.
    static bool IsSuitable(zarn::network::Interface const& interface);

    /// Joins on the suitable interfaces that are new and leaves on those that are suitable no more.
    /// Returns where joining failed; the next call tries again.
    std::vector<Failure> Follow(int socket, std::span<zarn::network::Interface const> interfaces);

    /// The number of interfaces on which the group is joined.
    std::size_t GetCount() const noexcept { return joined.size(); }

private:
    struct Joined {
        unsigned index;
        std::string hardwareAddress; ///< tells a new interface from an older one that had its index

        bool IsOn(zarn::network::Interface const& interface) const;
    };

    boost::asio::ip::address_v4 group;
    std::vector<Joined> joined;
};

} // namespace zarn::protocol::network::udp
