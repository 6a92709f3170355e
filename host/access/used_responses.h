#pragma once

#include "host/access/access_settings.h"
#include "host/access/nonces.h"

#include <zarn/authentication/engine.h>

#include <boost/unordered/unordered_flat_set.hpp>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <map>
#include <mutex>

namespace zarn::host {

/// Remembers which right responses have been used, as long as their nonces may be valid. Only clients that know the
/// password add to it. When it is full it drops the oldest responses, and refuses all nonces of their time, so that
/// none of them can be used again. The nonce counts of one client may come in any order. Thread: any.
class UsedResponses {
public:
    using Clock = Nonces::Clock;

    /// maximum  how many responses are remembered, about 20 bytes each
    explicit UsedResponses(std::size_t maximum = 262144) : maximum(maximum) {}

    UsedResponses(UsedResponses const&) = delete;
    UsedResponses& operator=(UsedResponses const&) = delete;

    /// Remembers a response whose nonce was made at `made`, in whole milliseconds. False when it was used before, or
    /// may be among those that were dropped.
    bool Add(authentication::DigestUse const& response, Clock::time_point made, Clock::time_point now);

    std::size_t GetSize() const;

    /// No nonce is valid for longer, so that its responses need not be remembered after that.
    static constexpr std::chrono::seconds LongestLife = LongestNonceLife;

private:
    /// The responses to the nonces of a span of time, by their hashes: two that share one would cost the client of the
    /// second another round, and nothing else. A set is one block of memory: thousands of small blocks that live for
    /// minutes would each keep a page from going back to the system.
    struct Slice {
        boost::unordered_flat_set<std::uint64_t> responses;
        Clock::time_point newest; ///< of their nonces
    };

    using Slices = std::map<Clock::time_point, Slice>; ///< by the begin of the span

    Slices::node_type DropOldest();

    std::size_t const maximum;
    mutable std::mutex mutex; ///< guards the members below
    Slices slices;
    std::size_t size = 0;
    Clock::time_point forgotten = Clock::time_point::min(); ///< nonces made before are refused
};

} // namespace zarn::host
