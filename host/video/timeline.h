#pragma once

#include "host/video/access_unit.h"

#include <chrono>
#include <optional>

namespace zarn::host::video {

/// Puts the access units of one source run after another onto one timeline, without gaps between the end of a file and its
/// next beginning, and with the true gap after a failure. Pure: the time comes in.
/// Thread: one at a time.
class Timeline {
public:
    using Time = std::chrono::nanoseconds;

    /// The source begins anew: its times have nothing to do with those before.
    void BeginRun() { offset.reset(); }

    /// Places the next access unit in decoding order.
    /// presentation, decoding  times of the source; none when the source does not tell
    /// now  time since the timeline began
    Stamp Place(std::optional<Time> presentation, std::optional<Time> decoding, Time now);

    /// Where the newest access unit was placed, in decoding order; zero before the first.
    Time GetPosition() const { return position; }

private:
    Time Anchor(Time now) const;

    std::optional<Time> offset;  ///< from the source's times to the timeline's; none at the beginning of a run
    Time sourcePosition{0};      ///< newest decoding time of this run
    Time position{0};            ///< newest decoding time on the timeline
    Time interval{};             ///< between the newest two access units
    bool isEmpty = true;         ///< nothing was placed yet
};

} // namespace zarn::host::video
