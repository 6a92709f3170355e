#include "host/video/frame_rate.h"

#include <charconv>
#include <system_error>

namespace zarn::host::video {
namespace {

std::optional<std::int32_t> ParseRatePart(std::string_view text) {
    std::int32_t number = 0;
    char const* const end = text.data() + text.size();
    auto const result = std::from_chars(text.data(), end, number);
    if (result.ec != std::errc() || result.ptr != end || number < 0) return std::nullopt;
    return number;
}

} // namespace

std::optional<FrameRate> ParseFrameRate(std::string_view text) {
    auto const slash = text.find('/');
    auto const numerator = ParseRatePart(text.substr(0, slash));
    auto const denominator = slash == std::string_view::npos ? 1 : ParseRatePart(text.substr(slash + 1));
    if (!numerator || !denominator) return std::nullopt;
    return FrameRate{*numerator, *denominator};
}

} // namespace zarn::host::video
