#pragma once

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

} // namespace zarn::host::video
