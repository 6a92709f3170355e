#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <utility>

namespace zarn::host {

/// Reads a frame rate, "25" or "30000/1001": numerator and denominator, each 0 to 2147483647, as written.
/// None when the text is something else.
std::optional<std::pair<std::int32_t, std::int32_t>> ParseFrameRate(std::string_view text);

} // namespace zarn::host
