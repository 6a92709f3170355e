#pragma once

#include "host/access/access_settings.h"

#include <boost/asio/ip/address.hpp>

#include <chrono>
#include <cstddef>
#include <deque>
#include <map>
#include <mutex>
#include <optional>

namespace zarn::host {

/// Counts the failed logins of each address within the last minute, to slow down guessing. Both servers share one
/// count, so that guessing on two ports gains nothing. Keeps at most 4,096 addresses and forgets the one that failed
/// longest ago first. Thread: any.
class FailedLogins {
public:
    using Clock = std::chrono::steady_clock;

    /// limit  as in SetLimit
    explicit FailedLogins(std::size_t limit = AccessSettings().failedLoginsPerMinute) : limit(limit) {}

    FailedLogins(FailedLogins const&) = delete;
    FailedLogins& operator=(FailedLogins const&) = delete;

    /// How many logins an address may fail within a minute, from now on.
    void SetLimit(std::size_t value);

    /// Counts a failed login of `peer`.
    void Count(boost::asio::ip::address const& peer, Clock::time_point now = Clock::now());

    /// How long `peer` has to wait before it may try again, in whole seconds rounded up, at least one. None unless it
    /// failed more logins than the limit within the last minute.
    std::optional<std::chrono::seconds> GetWait(boost::asio::ip::address const& peer,
                                                Clock::time_point now = Clock::now()) const;

    static constexpr std::size_t MaximumAddresses = 4096;

private:
    void ForgetOne();

    mutable std::mutex mutex; ///< guards the members below
    std::size_t limit;
    std::map<boost::asio::ip::address, std::deque<Clock::time_point>> failures;
};

} // namespace zarn::host
