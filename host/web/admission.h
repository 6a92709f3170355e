#pragma once

#include "host/web/limits.h"

#include <boost/asio/ip/address.hpp>

#include <cstddef>
#include <memory>

namespace zarn::host::web {

/// Counts connections and exchanges and refuses those that would exceed a bound. Thread: any.
class Admission {
public:
    /// Counts as long as it, or a copy of it, lives, which may be longer than the admission; null: refused.
    using Slot = std::shared_ptr<void const>;

    Admission();
    Admission(Admission const&) = delete;
    Admission& operator=(Admission const&) = delete;

    /// A slot for a connection from `peer`.
    Slot Connect(boost::asio::ip::address const& peer, Limits const& limits);

    /// A slot for an exchange: hold it until the response is complete, also when the client has disconnected, since the
    /// work continues without it.
    Slot BeginExchange(Limits const& limits);

    std::size_t GetConnections() const;
    std::size_t GetExchanges() const;

private:
    struct Counts;
    std::shared_ptr<Counts> counts;
};

} // namespace zarn::host::web
