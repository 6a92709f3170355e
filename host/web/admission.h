#pragma once

#include "host/web/limits.h"

#include <boost/asio/ip/address.hpp>

#include <cstddef>
#include <memory>

namespace zarn::host::web {

/// Counts what is under way and refuses what would go past a bound.
/// Thread: any. A slot may outlive the admission.
class Admission {
public:
    /// A place that is taken for as long as the slot, or a copy of it, lives; null: refused.
    using Slot = std::shared_ptr<void const>;

    Admission();
    Admission(Admission const&) = delete;
    Admission& operator=(Admission const&) = delete;

    /// Takes a place for a connection from `peer`.
    Slot Connect(boost::asio::ip::address const& peer, Limits const& limits);

    /// Takes a place for an exchange: hold it until the response is complete, whether its client is still there or not,
    /// since the work goes on without the client.
    Slot BeginExchange(Limits const& limits);

    std::size_t GetConnections() const;
    std::size_t GetExchanges() const;

private:
    struct Counts;
    std::shared_ptr<Counts> counts;
};

} // namespace zarn::host::web
