#pragma once

#include "host/video/access_unit.h"
#include "host/video/format.h"

#include <chrono>

namespace zarn::host::video {

/// Turns times of a stream's timeline into those of one viewer, which begin at zero. Video from before the viewer
/// connected passes in a fiftieth of its time, so that the viewer sees a picture at once and is up to date right after.
/// Order is kept, also between presentation times that go back and forth. Pure.
class ViewerClock {
public:
    using Time = std::chrono::nanoseconds;

    /// first  presentation or decoding time of the first access unit, whichever is less
    /// present  the time on the timeline when the viewer connects
    ViewerClock(Time first, Time present) : first(first), present(present < first ? first : present) {}

    /// The viewer's time; never negative.
    Time Map(Time time) const {
        if (time <= first) return Time{0};
        if (time <= present) return (time - first) / Speed;
        return (present - first) / Speed + (time - present);
    }

private:
    static constexpr int Speed = 50;

    Time first;
    Time present;
};

/// Hands access units to one RTSP media. Never waits: a media that is too slow misses some and goes on at a key frame.
/// Thread: one at a time.
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
