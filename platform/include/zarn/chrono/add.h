#pragma once

#include <chrono>
#include <cstdint>
#include <limits>

namespace zarn::chrono {

/// The sum of two counts; a sum that cannot be represented is the largest or smallest count.
constexpr std::int64_t AddSaturated(std::int64_t left, std::int64_t right) noexcept {
    using Limits = std::numeric_limits<std::int64_t>;
    std::int64_t sum = 0;
    if (!__builtin_add_overflow(left, right, &sum)) return sum;
    return right < 0 ? Limits::min() : Limits::max();
}

/// The product of two counts, with the same limits.
constexpr std::int64_t MultiplySaturated(std::int64_t left, std::int64_t right) noexcept {
    using Limits = std::numeric_limits<std::int64_t>;
    std::int64_t product = 0;
    if (!__builtin_mul_overflow(left, right, &product)) return product;
    return (left < 0) != (right < 0) ? Limits::min() : Limits::max();
}

/// The time that lies a span after another (before it when the span is negative). A sum beyond the end or the
/// beginning of the clock is that end or beginning: it never wraps.
/// Clock  a clock that counts nanoseconds, such as std::chrono::system_clock or std::chrono::steady_clock
/// Thread: any.
template <class Clock>
constexpr std::chrono::time_point<Clock, std::chrono::nanoseconds>
Add(std::chrono::time_point<Clock, std::chrono::nanoseconds> time, std::chrono::nanoseconds span) noexcept {
    std::chrono::nanoseconds const sum(AddSaturated(time.time_since_epoch().count(), span.count()));
    return std::chrono::time_point<Clock, std::chrono::nanoseconds>(sum);
}

} // namespace zarn::chrono
