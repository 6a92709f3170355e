#include <zarn/logging/rate_limit.h>

#include <utility>

namespace zarn::logging {

RateLimit::RateLimit(Clock::duration interval) noexcept : interval(interval) {}

std::optional<std::uint64_t> RateLimit::Admit(Clock::time_point now) {
    std::lock_guard const lock(mutex);
    if (reported && now - *reported < interval) {
        ++suppressed;
        return std::nullopt;
    }
    reported = now;
    return std::exchange(suppressed, 0);
}

} // namespace zarn::logging
