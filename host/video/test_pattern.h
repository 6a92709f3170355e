#pragma once

#include <array>
#include <string_view>

namespace zarn::host::video {

/// The patterns of GStreamer's `videotestsrc` by name. Kept here so that a configuration can be checked without
/// GStreamer.
inline constexpr std::array<std::string_view, 26> TestPatterns{
    "smpte",
    "snow",
    "black",
    "white",
    "red",
    "green",
    "blue",
    "checkers-1",
    "checkers-2",
    "checkers-4",
    "checkers-8",
    "circular",
    "blink",
    "smpte75",
    "zone-plate",
    "gamut",
    "chroma-zone-plate",
    "solid-color",
    "ball",
    "smpte100",
    "bar",
    "pinwheel",
    "spokes",
    "gradient",
    "colors",
    "smpte-rp-219",
};

} // namespace zarn::host::video
