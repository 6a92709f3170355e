#include "host/video/feed.h"

#include <gst/app/app.h>

#include <algorithm>
#include <utility>

namespace zarn::host::video {
namespace {

/// What may wait in a media. The bytes are shared by all viewers of a channel, so this costs little.
constexpr guint64 MaximumWaiting = guint64{16} * 1024 * 1024;

GstClockTime ToClockTime(std::chrono::nanoseconds time) { return static_cast<GstClockTime>(time.count()); }

std::chrono::nanoseconds FirstTime(AccessUnit const& unit) {
    return std::min(unit.stamp.presentation, unit.stamp.decoding);
}

} // namespace

Feed::Feed(ObjectHandle<GstElement> source, Format const& format, AccessUnits const& group,
           std::chrono::nanoseconds present)
    : source(std::move(source)), clock(FirstTime(*group.front()), present) {
    gst_app_src_set_caps(GST_APP_SRC(this->source.get()), format.caps.get());
    for (auto const& unit : group) Push(*unit);
}

bool Feed::IsFull() const { return gst_app_src_get_current_level_bytes(GST_APP_SRC(source.get())) > MaximumWaiting; }

void Feed::Push(AccessUnit const& unit) {
    if (awaitsKey && !unit.isKey) return;
    awaitsKey = IsFull();
    if (awaitsKey) return;
    auto* buffer = gst_buffer_copy(unit.data.get());
    GST_BUFFER_PTS(buffer) = ToClockTime(clock.Map(unit.stamp.presentation));
    GST_BUFFER_DTS(buffer) = ToClockTime(clock.Map(unit.stamp.decoding));
    GST_BUFFER_DURATION(buffer) = GST_CLOCK_TIME_NONE;
    gst_app_src_push_buffer(GST_APP_SRC(source.get()), buffer);
}

void Feed::End() { gst_app_src_end_of_stream(GST_APP_SRC(source.get())); }

} // namespace zarn::host::video
