#pragma once

#include "host/video/handle.h"

#include <chrono>
#include <cstddef>
#include <memory>
#include <vector>

namespace zarn::host::video {

/// Times on a stream's timeline, which begins with the channel and never jumps back.
struct Stamp {
    std::chrono::nanoseconds presentation{0}; ///< when to show
    std::chrono::nanoseconds decoding{0};     ///< when to decode; grows from one access unit to the next
};

/// One coded picture. Never changes; shared by the streams and snapshots that use it.
struct AccessUnit {
    MiniHandle<GstBuffer> data;                   ///< byte stream; a key frame carries its parameter sets
    Stamp stamp;                                  ///< when
    bool isKey = false;                           ///< decoding can begin here
    std::size_t size = 0;                         ///< bytes in `data`
    std::chrono::steady_clock::time_point came{}; ///< when it came from the source
};

using AccessUnitPtr = std::shared_ptr<AccessUnit const>;

/// Access units in decoding order.
using AccessUnits = std::vector<AccessUnitPtr>;

} // namespace zarn::host::video
