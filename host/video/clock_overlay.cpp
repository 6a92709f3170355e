#include "host/video/clock_overlay.h"

#include <gst/video/video.h>

#include <algorithm>
#include <array>
#include <ctime>
#include <string>

namespace zarn::host::video {
namespace {

constexpr std::uint8_t Dark = 16;
constexpr std::uint8_t Bright = 235;

/// A cell is 4 units wide and 8 units high; the digit fills 3 by 7 of them.
constexpr std::size_t CellWidth = 4;
constexpr std::size_t CellHeight = 8;

struct Box {
    std::size_t left, top, width, height;
};

/// The segments a to g of a digit and three dots, in units of the cell, in the order of the bits below.
constexpr std::array Segments{Box{0, 0, 3, 1}, Box{2, 0, 1, 4}, Box{2, 3, 1, 4}, Box{0, 6, 3, 1}, Box{0, 3, 1, 4},
                              Box{0, 0, 1, 4}, Box{0, 3, 3, 1}, Box{1, 2, 1, 1}, Box{1, 4, 1, 1}, Box{1, 6, 1, 1}};

constexpr std::array<unsigned, 10> Digits{0x3F, 0x06, 0x5B, 0x4F, 0x66, 0x6D, 0x7D, 0x07, 0x7F, 0x6F};
constexpr unsigned Colon = 0x180;
constexpr unsigned Point = 0x200;

unsigned GetSegments(char character) {
    if (character >= '0' && character <= '9') return Digits[static_cast<std::size_t>(character - '0')];
    if (character == ':') return Colon;
    return character == '.' ? Point : 0;
}

void Fill(Plane const& plane, Box const& box, std::uint8_t value) {
    auto const right = std::min(box.left + box.width, plane.width);
    auto const bottom = std::min(box.top + box.height, plane.height);
    for (auto row = box.top; row < bottom; ++row) {
        if (box.left < right)
            std::ranges::fill(plane.samples.subspan(row * plane.stride + box.left, right - box.left), value);
    }
}

/// To tenths of a second.
std::string TellTime() {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    tm local{};
    localtime_r(&now.tv_sec, &local);
    std::array<char, 16> text{};
    auto const length = std::strftime(text.data(), text.size(), "%H:%M:%S", &local);
    return std::string(text.data(), length) + "." + std::to_string(now.tv_nsec / 100'000'000);
}

void Draw(GstVideoFrame& frame) {
    auto const stride = static_cast<std::size_t>(GST_VIDEO_FRAME_COMP_STRIDE(&frame, 0));
    auto const height = static_cast<std::size_t>(GST_VIDEO_FRAME_HEIGHT(&frame));
    auto* samples = static_cast<std::uint8_t*>(GST_VIDEO_FRAME_COMP_DATA(&frame, 0));
    DrawClock({{samples, stride * height}, stride, static_cast<std::size_t>(GST_VIDEO_FRAME_WIDTH(&frame)), height},
              TellTime());
}

GstPadProbeReturn OnPicture(GstPad* pad, GstPadProbeInfo* info, gpointer) {
    auto* buffer = gst_buffer_make_writable(gst_pad_probe_info_get_buffer(info));
    GST_PAD_PROBE_INFO_DATA(info) = buffer;
    GstCaps* caps = gst_pad_get_current_caps(pad);
    GstVideoInfo video;
    GstVideoFrame frame;
    if (caps != nullptr && gst_video_info_from_caps(&video, caps) != FALSE &&
        gst_video_frame_map(&frame, &video, buffer, GST_MAP_READWRITE) != FALSE) {
        Draw(frame);
        gst_video_frame_unmap(&frame);
    }
    gst_clear_caps(&caps);
    return GST_PAD_PROBE_OK;
}

} // namespace

void DrawClock(Plane const& brightness, std::string_view text) {
    auto const unit = std::max<std::size_t>(1, brightness.height / 120);
    Fill(brightness, {unit, unit, (text.size() * CellWidth + 1) * unit, (CellHeight + 1) * unit}, Dark);
    auto left = 2 * unit;
    for (char const character : text) {
        auto const segments = GetSegments(character);
        for (std::size_t index = 0; index < Segments.size(); ++index) {
            if ((segments >> index & 1) == 0) continue;
            auto const& box = Segments[index];
            Fill(brightness, {left + box.left * unit, (2 + box.top) * unit, box.width * unit, box.height * unit},
                 Bright);
        }
        left += CellWidth * unit;
    }
}

void AttachClock(GstPad* pad) { gst_pad_add_probe(pad, GST_PAD_PROBE_TYPE_BUFFER, OnPicture, nullptr, nullptr); }

} // namespace zarn::host::video
