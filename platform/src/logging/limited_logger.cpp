#include <zarn/logging/limited_logger.h>

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

LimitedLogger::LimitedLogger(std::string name, RateLimit::Clock::duration interval)
    : logger(std::move(name)), limit(interval) {}

void LimitedLogger::Write(Level level, std::string const& text, std::uint64_t suppressed) const {
    if (suppressed == 0)
        logger.Log(level, "%0%", text);
    else
        logger.Log(level, "%0% (%1% more since the last report)", text, suppressed);
}

} // namespace zarn::logging
