#pragma once

#include "host/access/access_settings.h"

#include <zarn/authentication/replay_check.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <map>
#include <mutex>
#include <unordered_set>

namespace zarn::host::web {

/// Remembers which right digest answers have been used, as long as their nonces may count. Only who knows the password
/// adds to it. When it is full the oldest answers go first, and with them all nonces of their time, so that none of
/// them can be used again. Counts of one client may come in any order. Thread: any.
class UsedAnswers {
public:
    using Clock = std::chrono::steady_clock;

    /// maximum  how many answers are remembered, some 50 bytes each
    explicit UsedAnswers(std::size_t maximum = 262144) : maximum(maximum) {}

    UsedAnswers(UsedAnswers const&) = delete;
    UsedAnswers& operator=(UsedAnswers const&) = delete;

    /// Remembers an answer whose nonce was made at `made`, in whole milliseconds. False when it is remembered already,
    /// or might have been among those that went.
    bool Add(authentication::AnswerIdentity const& answer, Clock::time_point made, Clock::time_point now);

    std::size_t GetSize() const;

    /// After that a nonce counts no longer, whatever its life, and its answers need not be remembered.
    static constexpr std::chrono::seconds LongestLife = LongestNonceLife;

private:
    /// The answers to nonces of a span of time, by their hashes: two that share one would cost the client of the
    /// second another round, and nothing else.
    struct Slice {
        std::unordered_set<std::uint64_t> answers;
        Clock::time_point newest; ///< of their nonces
    };

    using Slices = std::map<Clock::time_point, Slice>; ///< by the begin of the span

    Slices::node_type DropOldest();

    std::size_t const maximum;
    mutable std::mutex mutex; ///< guards the members below
    Slices slices;
    std::size_t size = 0;
    Clock::time_point forgotten = Clock::time_point::min(); ///< nonces made before count no longer
};

} // namespace zarn::host::web
