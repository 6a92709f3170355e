#pragma once

#include "host/video/source.h"

#include <chrono>
#include <cstdint>
#include <optional>

namespace zarn::host::video {

/// Measures the frame rate of a stream that does not tell it. Pure. Thread: one at a time.
class RateMeter {
public:
    /// One more access unit at this decoding time; times that do not grow are skipped.
    void Add(std::chrono::nanoseconds time);

    /// The rate over the newest seconds as one that is usual for video when it is within one percent of such a one,
    /// else rounded to hundredths. None before enough access units.
    std::optional<FrameRate> GetRate() const { return rate; }

    /// Starts over.
    void Reset() { *this = RateMeter(); }

private:
    std::optional<std::chrono::nanoseconds> begin;
    std::chrono::nanoseconds newest{0};
    std::int64_t intervals = 0;
    std::optional<FrameRate> rate;
};

} // namespace zarn::host::video
