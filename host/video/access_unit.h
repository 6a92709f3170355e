#pragma once

#include "host/video/gstreamer.h"
#include "host/video/rtp/packets.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
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
    MiniHandle<GstBuffer> data;                      ///< byte stream; a key frame carries its parameter sets
    Stamp stamp;                                     ///< when
    bool isKey = false;                              ///< decoding can begin here
    std::size_t size = 0;                            ///< bytes in `data`
    std::chrono::steady_clock::time_point arrived{}; ///< from the source
    std::shared_ptr<rtp::Packets const> packets;     ///< for RTSP viewers; null: they do not get it
    std::uint64_t number = 0;                        ///< set by the stream: 1, 2, 3, ...
};

using AccessUnitPtr = std::shared_ptr<AccessUnit const>;

/// Access units in decoding order.
using AccessUnits = std::vector<AccessUnitPtr>;

/// The newest key frame of a stream and everything after it: what a new viewer or a snapshot has to decode. A group
/// that grows past a bound is dropped until the next key frame, since a part of it would be useless. Thread: one at a
/// time.
class GroupOfPictures {
public:
    struct Bounds {
        std::size_t units = 3600;
        std::size_t bytes = std::size_t{32} * 1024 * 1024;
    };

    GroupOfPictures() = default;

    explicit GroupOfPictures(Bounds bounds) : bounds(bounds) {}

    /// Adds the next access unit; those before the first key frame are skipped.
    void Add(AccessUnitPtr unit);

    /// Drops everything.
    void Clear();

    /// The group so far; empty or beginning with a key frame.
    AccessUnits const& GetUnits() const { return units; }

private:
    Bounds bounds{};
    AccessUnits units;
    std::size_t bytes = 0;
};

} // namespace zarn::host::video
