#include "host/video/timeline.h"

#include <algorithm>

namespace zarn::host::video {
namespace {

using namespace std::chrono_literals;

/// For sources that do not tell: 25 pictures a second.
constexpr Timeline::Time DefaultInterval = 40ms;

/// A run that begins within this time after the end of the run before continues it without a gap.
constexpr Timeline::Time SeamlessLimit = 500ms;

/// Larger steps of a source's times are no pauses but a new beginning.
constexpr Timeline::Time JumpLimit = 2s;

/// How far decoding may run ahead of presentation where the source does not tell decoding times.
constexpr Timeline::Time ReorderLimit = 500ms;

} // namespace

/// Without decoding times, presentation times go back and forth; access units are then spread evenly, so that those of
/// a file do not come in bunches.
Timeline::Time Timeline::ChooseOrder(SourceTimes const& times) {
    auto const next = order + (interval > 0ns ? interval : DefaultInterval);
    if (times.decoding) return offset ? std::max(order, *times.decoding) : *times.decoding;
    if (!times.presentation) return offset ? next : 0ns;
    latest = offset ? std::max(latest, *times.presentation) : *times.presentation;
    if (!offset || !times.duration) return latest;
    return std::max(order, std::clamp(next, latest - ReorderLimit, latest));
}

Timeline::Time Timeline::Anchor(Time now) const {
    if (isEmpty) return now;
    auto const next = position + (interval > 0ns ? interval : DefaultInterval);
    return now - next > SeamlessLimit ? now : next;
}

Stamp Timeline::Place(SourceTimes const& times, Time now) {
    auto const told = times.decoding ? times.decoding : times.presentation;
    if (offset && told && (*told > order + JumpLimit || *told < order - JumpLimit)) offset.reset();
    auto const source = ChooseOrder(times);
    if (!offset) {
        offset = Anchor(now) - source;
    } else if (source > order) {
        interval = source - order;
    }
    if (times.duration && *times.duration > 0ns) interval = *times.duration;
    order = source;
    position = std::max(position, source + *offset);
    isEmpty = false;
    return {times.presentation ? std::max(0ns, *times.presentation + *offset) : position, position};
}

} // namespace zarn::host::video
