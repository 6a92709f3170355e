#include "host/video/timeline.h"

#include <algorithm>

namespace zarn::host::video {
namespace {

using namespace std::chrono_literals;

/// For sources that do not tell: about 25 pictures a second.
constexpr Timeline::Time DefaultInterval = 40ms;

/// A run that begins within this time after the end of the run before continues it without a gap.
constexpr Timeline::Time SeamlessLimit = 500ms;

/// Larger steps of a source's times are no pauses but a new beginning.
constexpr Timeline::Time JumpLimit = 2s;

} // namespace

Timeline::Time Timeline::Anchor(Time now) const {
    if (isEmpty) return now;
    auto const next = position + (interval > 0ns ? interval : DefaultInterval);
    return now - next > SeamlessLimit ? now : next;
}

Stamp Timeline::Place(std::optional<Time> presentation, std::optional<Time> decoding, Time now) {
    auto const fallback = offset ? sourcePosition + (interval > 0ns ? interval : DefaultInterval) : Time{0};
    // Without decoding times, presentation times go back and forth a little: the largest so far is the order.
    auto source = decoding ? *decoding : presentation.value_or(fallback);
    if (offset && (source > sourcePosition + JumpLimit || source < sourcePosition - JumpLimit)) offset.reset();
    if (offset && (!decoding || source < sourcePosition)) source = std::max(source, sourcePosition);
    if (!offset) {
        offset = Anchor(now) - source;
    } else if (source > sourcePosition) {
        interval = source - sourcePosition;
    }
    sourcePosition = source;
    position = std::max(position, source + *offset);
    isEmpty = false;
    return {presentation ? std::max(Time{0}, *presentation + *offset) : position, position};
}

} // namespace zarn::host::video
