#pragma once

#include <boost/asio/ip/address.hpp>

#include <chrono>
#include <cstddef>
#include <deque>
#include <map>
#include <mutex>
#include <optional>

namespace zarn::host::web {

/// Remembers, per address, the wrong digest answers of the last minute, so that guessing can be slowed down.
/// Remembers 4,096 addresses at most and forgets the one that failed longest ago first. Thread: any.
class FailedLogins {
public:
    using Clock = std::chrono::steady_clock;

    FailedLogins() = default;
    FailedLogins(FailedLogins const&) = delete;
    FailedLogins& operator=(FailedLogins const&) = delete;

    /// Counts one wrong answer of `peer`; `limit` as in GetWait.
    void Count(boost::asio::ip::address const& peer, std::size_t limit, Clock::time_point now = Clock::now());

    /// How long `peer` has to wait before it may try again: none unless it has given more than `limit` wrong answers
    /// within the last minute; rounded up to whole seconds, one at least.
    std::optional<std::chrono::seconds> GetWait(boost::asio::ip::address const& peer, std::size_t limit,
                                                Clock::time_point now = Clock::now()) const;

    static constexpr std::size_t MaximumAddresses = 4096;

private:
    void ForgetOne();

    mutable std::mutex mutex; ///< guards failures
    std::map<boost::asio::ip::address, std::deque<Clock::time_point>> failures;
};

} // namespace zarn::host::web
