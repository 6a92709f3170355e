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
    auto const others = " (" + std::to_string(suppressed) + " more since the last report)";
    logger.Write(level, suppressed == 0 ? text : text + others);
}

} // namespace zarn::logging
