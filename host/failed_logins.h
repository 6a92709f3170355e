#pragma once

#include <boost/asio/ip/address.hpp>

#include <chrono>
#include <cstddef>
#include <deque>
#include <map>
#include <mutex>
#include <optional>

namespace zarn::host {

/// Remembers, per address, the wrong digest answers of the last minute, so that guessing can be slowed down. The
/// servers share one, so that whoever guesses on both ports gets no further than on one. Remembers 4,096 addresses at
/// most and forgets the one that failed longest ago first. Thread: any.
class FailedLogins {
public:
    using Clock = std::chrono::steady_clock;

    /// limit  as in SetLimit
    explicit FailedLogins(std::size_t limit = DefaultLimit) : limit(limit) {}

    FailedLogins(FailedLogins const&) = delete;
    FailedLogins& operator=(FailedLogins const&) = delete;

    /// How many wrong answers an address may give within a minute, from now on.
    void SetLimit(std::size_t value);

    /// Counts one wrong answer of `peer`.
    void Count(boost::asio::ip::address const& peer, Clock::time_point now = Clock::now());

    /// How long `peer` has to wait before it may try again: none unless it has given more wrong answers than
    /// the limit within the last minute; rounded up to whole seconds, one at least.
    std::optional<std::chrono::seconds> GetWait(boost::asio::ip::address const& peer,
                                                Clock::time_point now = Clock::now()) const;

    static constexpr std::size_t DefaultLimit = 60;
    static constexpr std::size_t MaximumAddresses = 4096;

private:
    void ForgetOne();

    mutable std::mutex mutex; ///< guards the members below
    std::size_t limit;
    std::map<boost::asio::ip::address, std::deque<Clock::time_point>> failures;
};

} // namespace zarn::host
