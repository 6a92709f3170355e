#include "host/video/viewer_queue.h"

#include <algorithm>

namespace zarn::host::video {
namespace {

ViewerQueue::Time GetFirstTime(AccessUnit const& unit) {
    return std::min(unit.stamp.presentation, unit.stamp.decoding);
}

} // namespace

void ViewerQueue::Start(AccessUnits const& group, Time present) {
    isRunning = true;
    awaitsKey = group.empty();
    newest = 0; // after a pause, the key frame is sent again
    if (!group.empty()) clock.emplace(GetFirstTime(*group.front()), present);
    for (auto const& unit : group) {
        awaitsKey = bytes > MaximumBytes;
        if (awaitsKey) break;
        Add(unit, present);
    }
}

void ViewerQueue::Stop(Time present) {
    origin = Map(present);
    clock.reset();
    isRunning = false;
    Drop();
}

void ViewerQueue::Push(AccessUnitPtr const& unit) {
    if (!isRunning || unit->number <= newest) return;
    if (awaitsKey && !unit->isKey) return;
    if (IsLate(unit->stamp.presentation)) {
        Drop();
        awaitsKey = !unit->isKey;
        if (awaitsKey) return;
    }
    awaitsKey = false;
    Add(unit, unit->stamp.presentation);
}

void ViewerQueue::Add(AccessUnitPtr const& unit, Time present) {
    if (!clock) clock.emplace(GetFirstTime(*unit), GetFirstTime(*unit));
    newest = unit->number;
    items.push_back({unit, Map(unit->stamp.presentation), present});
    bytes += unit->size;
}

/// Whether the viewer is too far behind for what waits to be of use.
bool ViewerQueue::IsLate(Time present) const {
    return bytes > MaximumBytes || (!items.empty() && present - items.front().added > MaximumAge);
}

void ViewerQueue::Drop() {
    items.clear();
    bytes = 0;
}

void ViewerQueue::RemoveFirst() {
    bytes -= items.front().unit->size;
    items.pop_front();
}

ViewerQueue::Time ViewerQueue::Map(Time time) const { return clock ? origin + clock->Map(time) : origin; }

} // namespace zarn::host::video
