#pragma once

#include <chrono>
#include <cstdint>
#include <mutex>
#include <optional>

namespace zarn::logging {

/// Keeps a failure that a peer can repeat at will from filling the log: the first is reported at once, further ones are
/// counted and reported together, at most once per interval. Thread: any.
class RateLimit {
public:
    using Clock = std::chrono::steady_clock;

    explicit RateLimit(Clock::duration interval = std::chrono::seconds(1)) noexcept;

    /// Counts one occurrence. Empty when it is not to be reported now; otherwise the number of earlier occurrences
    /// that were not reported (0 for the first).
    std::optional<std::uint64_t> Admit(Clock::time_point now = Clock::now());

private:
    Clock::duration interval;
    std::mutex mutex; ///< guards the members below
    std::optional<Clock::time_point> reported;
    std::uint64_t suppressed = 0;
};

} // namespace zarn::logging
