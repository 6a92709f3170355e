#pragma once

#include "host/access/access_settings.h"

#include <cstddef>
#include <memory>

namespace boost::asio::ip {
class address;
}

namespace zarn::host {

/// Counts the open connections of a server, in all and from each address, and refuses those that would exceed a bound.
/// Thread: any.
class ConnectionCount {
public:
    /// Counts as long as it, or a copy of it, lives, which may be longer than the count; null: refused.
    using Slot = std::shared_ptr<void const>;

    ConnectionCount();
    ConnectionCount(ConnectionCount const&) = delete;
    ConnectionCount& operator=(ConnectionCount const&) = delete;

    /// A slot for a connection from `peer`.
    Slot Add(boost::asio::ip::address const& peer, ConnectionLimits const& limits);

    /// The open connections in all.
    std::size_t Get() const;

private:
    struct Counts;
    std::shared_ptr<Counts> counts;
};

} // namespace zarn::host
