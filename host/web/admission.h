#pragma once

#include "host/access/connection_count.h"
#include "host/web/limits.h"

#include <boost/asio/ip/address.hpp>

#include <atomic>
#include <cstddef>
#include <memory>

namespace zarn::host::web {

/// Counts connections and exchanges and refuses those that would exceed a bound. Thread: any.
class Admission {
public:
    /// Counts as long as it, or a copy of it, lives, which may be longer than the admission; null: refused.
    using Slot = ConnectionCount::Slot;

    /// A slot for a connection from `peer`.
    Slot Connect(boost::asio::ip::address const& peer, Limits const& limits) {
        return connections.Add(peer, {limits.connections, limits.connectionsPerAddress});
    }

    /// A slot for an exchange: hold it until the response is complete, also when the client has disconnected, since the
    /// work continues without it.
    Slot BeginExchange(Limits const& limits);

    std::size_t GetConnections() const { return connections.Get(); }

    std::size_t GetExchanges() const { return *exchanges; }

private:
    ConnectionCount connections;
    std::shared_ptr<std::atomic<std::size_t>> exchanges = std::make_shared<std::atomic<std::size_t>>(0);
};

} // namespace zarn::host::web
