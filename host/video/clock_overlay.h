#pragma once

#include <gst/gst.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace zarn::host::video {

/// One plane of a picture: a byte per sample, rows `stride` bytes apart.
struct Plane {
    std::span<std::uint8_t> samples;
    std::size_t stride = 0;
    std::size_t width = 0;
    std::size_t height = 0;
};

/// Draws a text of digits, ':' and '.' into the upper left corner of a brightness plane: bright seven-segment digits on
/// a dark box, their size following the plane's height. What does not fit into the plane is left out. Pure.
void DrawClock(Plane const& brightness, std::string_view text);

/// Draws the local time of day into every I420 picture that passes the pad, so that test video moves whatever its
/// pattern.
void AttachClock(GstPad* pad);

} // namespace zarn::host::video
