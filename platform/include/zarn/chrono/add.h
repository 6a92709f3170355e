#pragma once

#include <chrono>
#include <limits>

namespace zarn::chrono {

/// The time that lies a span after another (before it when the span is negative). A sum beyond the end or the
/// beginning of the clock is that end or beginning: it never wraps.
/// Clock  a clock that counts nanoseconds, such as std::chrono::system_clock or std::chrono::steady_clock
/// Thread: any.
template <class Clock>
constexpr std::chrono::time_point<Clock, std::chrono::nanoseconds>
Add(std::chrono::time_point<Clock, std::chrono::nanoseconds> time, std::chrono::nanoseconds span) noexcept {
    using Limits = std::numeric_limits<std::chrono::nanoseconds::rep>;
    auto const count = time.time_since_epoch().count();
    if (span.count() > 0 && count > Limits::max() - span.count()) return decltype(time)::max();
    if (span.count() < 0 && count < Limits::min() - span.count()) return decltype(time)::min();
    return time + span;
}

} // namespace zarn::chrono
