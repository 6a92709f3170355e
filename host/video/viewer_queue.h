#pragma once

#include "host/video/access_unit.h"
#include "host/video/viewer_clock.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>

namespace zarn::host::video {

/// The access units that wait to be sent to one viewer. A viewer that is too slow misses what waits and goes on at a
/// key frame: all queues hold only the newest part of the stream, and the units themselves are shared by all viewers of
/// a channel. Thread: one at a time.
class ViewerQueue {
public:
    using Time = std::chrono::nanoseconds;

    /// More than this is not kept for a viewer, in bytes.
    static constexpr std::size_t MaximumBytes = std::size_t{16} * 1024 * 1024;

    /// What has waited longer than this is dropped.
    static constexpr std::chrono::seconds MaximumAge{10};

    /// One access unit and when to show it, on the viewer's clock.
    struct Item {
        AccessUnitPtr unit;
        Time time;
        Time added; ///< on the stream's timeline
    };

    /// Begins with a group of pictures, or after Stop() begins again with it; the viewer's clock goes on then. Of a
    /// group of more than MaximumBytes, the viewer gets the beginning. group    empty: waits for the next key frame
    /// present  the time on the stream's timeline
    void Start(AccessUnits const& group, Time present);

    /// Drops what waits; Push() does nothing until the next Start().
    /// present  the time on the stream's timeline
    void Stop(Time present);

    /// Adds the next access unit, unless it has been added before or has to be skipped.
    void Push(AccessUnitPtr const& unit);

    /// Some access units were lost: goes on at a key frame.
    void Skip() { awaitsKey = true; }

    /// Whether nothing waits.
    bool IsEmpty() const { return items.empty(); }

    /// Bytes of what waits.
    std::size_t GetBytes() const { return bytes; }

    /// What waits longest; there must be something.
    Item const& GetFirst() const { return items.front(); }

    /// Removes what GetFirst() returns.
    void RemoveFirst();

    /// Whether the viewer's clock runs: there has been an access unit since the start.
    bool HasClock() const { return clock.has_value(); }

    /// A time of the stream's timeline on the viewer's clock.
    Time Map(Time time) const;

private:
    void Add(AccessUnitPtr const& unit, Time present);
    bool IsLate(Time present) const;
    void Drop();

    std::optional<ViewerClock> clock; ///< none while no access unit has been added since the start
    Time origin{0};                   ///< the viewer's time at the beginning of `clock`
    bool isRunning = false;
    bool awaitsKey = false;
    std::uint64_t newest = 0; ///< AccessUnit::number
    std::size_t bytes = 0;    ///< of `items`
    std::deque<Item> items;
};

} // namespace zarn::host::video
