#pragma once

#include "host/video/access_unit.h"

#include <chrono>
#include <optional>

namespace zarn::host::video {

/// What a source tells of the times of an access unit.
struct SourceTimes {
    std::optional<std::chrono::nanoseconds> presentation; ///< when to show it
    std::optional<std::chrono::nanoseconds> decoding;     ///< when to decode it
    std::optional<std::chrono::nanoseconds> duration;     ///< how long it is shown
};

/// Puts the access units of one source run after another onto one timeline, without gaps between the end of a file and
/// its next beginning, and with the true gap after a failure. Pure: the time comes in. Thread: one at a time.
class Timeline {
public:
    using Time = std::chrono::nanoseconds;

    /// The source restarts: its times have no relation to those before.
    void BeginRun() { offset.reset(); }

    /// Places the next access unit in decoding order.
    /// now  time since the timeline began
    Stamp Place(SourceTimes const& times, Time now);

    /// Where the newest access unit was placed, in decoding order; zero before the first.
    Time GetPosition() const { return position; }

private:
    Time ChooseOrder(SourceTimes const& times);
    Time Anchor(Time now) const;

    std::optional<Time> offset; ///< from the source's times to the timeline's; none at the beginning of a run
    Time order{0};              ///< newest decoding time of this run
    Time latest{0};             ///< greatest presentation time of this run
    Time position{0};           ///< newest decoding time on the timeline
    Time interval{};            ///< between access units; zero: not known yet
    bool isEmpty = true;        ///< nothing was placed yet
};

} // namespace zarn::host::video
