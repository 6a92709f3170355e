#pragma once

#include "host/access/access_settings.h"

#include <zarn/authentication/engine.h>

#include <array>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>

namespace zarn::host::web {

/// Makes nonces and recognises its own without keeping any, so that no number of challenges takes memory or pushes
/// others out: a nonce is its time, its number and a keyed hash of both. The random key lives as long as the object.
/// Thread: any.
class Nonces {
public:
    using Clock = std::chrono::steady_clock;

    /// Throws std::runtime_error when the system gives no random bytes.
    Nonces();

    /// A nonce made at `now`, 64 hexadecimal characters; no two are the same.
    std::string Make(Clock::time_point now);

    /// When `nonce` was made, rounded down to a millisecond; none when another object made it.
    std::optional<Clock::time_point> GetTime(std::string_view nonce) const;

private:
    std::string Sign(std::string_view text) const;

    std::array<unsigned char, 32> key;
    std::atomic<std::uint64_t> count = 0;
};

/// Remembers which right responses have been used, as long as their nonces may be valid. Only clients that know the
/// password add to it. When it is full it drops the oldest responses, and refuses all nonces of their time, so that
/// none of them can be used again. The nonce counts of one client may come in any order. Thread: any.
class UsedResponses {
public:
    using Clock = Nonces::Clock;

    /// maximum  how many responses are remembered, some 50 bytes each
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
    /// second another round, and nothing else.
    struct Slice {
        std::unordered_set<std::uint64_t> responses;
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

/// The nonces of the web server's challenges, and which responses to them may be used: a response whose nonce was made
/// here and is younger than its life; with a nonce count or a client nonce, only once. Thread: any.
class Challenges final : public authentication::ReplayCheck {
public:
    using Clock = Nonces::Clock;

    static constexpr std::chrono::seconds LongestLife = UsedResponses::LongestLife;

    /// clock  what time it is
    /// Throws std::runtime_error when the system gives no random bytes.
    explicit Challenges(std::function<Clock::time_point()> clock = Clock::now);

    /// Sets how long nonces are valid, also those made before: 1 second to LongestLife.
    /// Throws std::invalid_argument for anything else.
    void SetLife(std::chrono::seconds value);

    /// A nonce for a new challenge.
    std::string MakeNonce();

    /// A response with neither nc nor cnonce cannot be told from another one of the same client, so that
    /// it may be used as long as its nonce is valid.
    bool Accept(authentication::DigestUse const& response) override;

private:
    std::function<Clock::time_point()> clock;
    std::atomic<std::chrono::seconds> life = LongestLife;
    Nonces nonces;
    UsedResponses used;
};

} // namespace zarn::host::web
