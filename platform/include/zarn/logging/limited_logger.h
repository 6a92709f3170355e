#pragma once

#include <zarn/logging/logger.h>

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

namespace zarn::logging {

/// Counts what happens more often than it is to be reported: the first time at once, later ones together, at most once
/// per interval. Thread: any.
class RateLimit {
public:
    /// The clock that measures the interval.
    using Clock = std::chrono::steady_clock;

    /// interval  the least time between two reports
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

/// A logger for failures that a peer can repeat at will: it writes at most one line per interval, and the next line
/// ends with the number of those in between, such as " (3 more since the last report)". Thread: any.
class LimitedLogger {
public:
    /// name  as for Logger
    explicit LimitedLogger(std::string name, RateLimit::Clock::duration interval = std::chrono::seconds(1));

    /// Writes or counts a line. Never throws: without memory for the line nothing is written.
    template <class... Args>
    void Log(Level level, std::string_view format, Args const&... args) noexcept {
        try {
            if (!IsEnabled(level)) return;
            auto const suppressed = limit.Admit();
            if (!suppressed) return;
            std::array<std::string, sizeof...(Args)> const texts{ToText(args)...};
            Write(level, Format(format, texts), *suppressed);
        } catch (...) { // without memory for the line there is no other way to report it
            return;
        }
    }

private:
    void Write(Level level, std::string const& text, std::uint64_t suppressed) const;

    Logger logger;
    RateLimit limit;
};

} // namespace zarn::logging
