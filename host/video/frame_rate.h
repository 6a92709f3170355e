#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace zarn::host::video {

/// Frames per second as a fraction.
struct FrameRate {
    std::int32_t numerator = 25;
    std::int32_t denominator = 1;

    bool operator==(FrameRate const&) const = default;
};

/// Reads a frame rate, "25" or "30000/1001": numerator and denominator, each 0 to 2147483647, as written, whether they
/// make sense or not. None when the text is something else. Thread: any.
std::optional<FrameRate> ParseFrameRate(std::string_view text);

} // namespace zarn::host::video
