#pragma once

#include <boost/asio/ip/address_v4.hpp>

#include <chrono>
#include <cstddef>
#include <map>

namespace zarn::protocol::network::udp {

/// A bucket of tokens: it starts full, each datagram takes one, and they come back steadily. Not thread-safe.
class TokenBucket {
public:
    /// The clock that measures the rate.
    using Clock = std::chrono::steady_clock;

    /// How fast and how many.
    struct Rate {
        unsigned perSecond; ///< tokens that come back in a second, at least 1
        unsigned burst;     ///< tokens in a full bucket, at least 1
    };

    /// A full bucket.
    explicit TokenBucket(Rate rate) noexcept;

    /// True when there is a token to take.
    bool HasToken(Clock::time_point now) const noexcept;

    /// Takes a token; only when HasToken says that there is one.
    void TakeToken(Clock::time_point now) noexcept;

    /// True when no token is missing: the bucket says no more than a new one.
    bool IsFull(Clock::time_point now) const noexcept;

private:
    Clock::duration interval;  ///< between two tokens
    Clock::duration tolerance; ///< how far ahead of now `full` may be with a token left
    Clock::time_point full;    ///< when the bucket is full again
};

/// Limits how many datagrams are accepted, from each source address and in total, and so how many answers are sent.
/// What it remembers is bounded, however many sources there seem to be. Not thread-safe.
class Throttle {
public:
    /// The clock that measures the rates.
    using Clock = TokenBucket::Clock;

    static constexpr TokenBucket::Rate PerSource{.perSecond = 10, .burst = 20}; ///< datagrams from one address
    static constexpr TokenBucket::Rate InAll{.perSecond = 200, .burst = 400}; ///< datagrams from all addresses together
    /// More sources than can have a token missing: InAll lets 400 datagrams pass at once and 200 in each second, and
    /// the bucket of a source is full again after two seconds.
    static constexpr std::size_t MaximumSources = 1024;

    /// Counts one datagram; false when it is one too many. One that is refused counts for nothing, so that
    /// a source that sends too much cannot use up what the others may send.
    bool Admit(boost::asio::ip::address_v4 const& source, Clock::time_point now = Clock::now());

    /// The number of sources that are remembered, at most MaximumSources.
    std::size_t GetSourceCount() const noexcept { return sources.size(); }

private:
    TokenBucket all{InAll};
    std::map<boost::asio::ip::address_v4, TokenBucket> sources;
};

} // namespace zarn::protocol::network::udp
