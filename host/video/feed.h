#pragma once

#include "host/video/access_unit.h"
#include "host/video/format.h"
#include "host/video/handle.h"
#include "host/video/viewer_clock.h"

#include <chrono>

namespace zarn::host::video {

/// Hands access units to one RTSP media. Never waits: a media that does not take them in time misses some and goes on
/// at a key frame. Thread: one at a time.
class Feed {
public:
    /// source  the media's application source
    /// group   what the viewer begins with; not empty
    /// present the timeline now
    Feed(ObjectHandle<GstElement> source, Format const& format, AccessUnits const& group,
         std::chrono::nanoseconds present);

    /// Hands over one access unit.
    void Push(AccessUnit const& unit);

    /// There will be no more.
    void End();

private:
    bool IsFull() const;

    ObjectHandle<GstElement> source;
    ViewerClock clock;
    bool awaitsKey = false;
};

} // namespace zarn::host::video
