#include "host/video/test_clock.h"

#include "host/video/clock_overlay.h"

#include <gst/video/video.h>

#include <array>
#include <ctime>
#include <string>

namespace zarn::host::video {
namespace {

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

void AttachClock(GstPad* pad) { gst_pad_add_probe(pad, GST_PAD_PROBE_TYPE_BUFFER, OnPicture, nullptr, nullptr); }

} // namespace zarn::host::video
