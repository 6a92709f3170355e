#pragma once

#include "host/video/access_unit.h"

#include <cstddef>

namespace zarn::host::video {

/// The newest key frame of a stream and everything after it: what a viewer who comes now, or a snapshot, has to decode.
/// Bounded: a group that grows past a bound is given up until the next key frame, since a part of it would be of no
/// use. Thread: one at a time.
class GroupOfPictures {
public:
    struct Bounds {
        std::size_t units = 3600;
        std::size_t bytes = std::size_t{32} * 1024 * 1024;
    };

    GroupOfPictures() = default;

    explicit GroupOfPictures(Bounds bounds) : bounds(bounds) {}

    /// Takes the next access unit; those before the first key frame are passed over.
    void Add(AccessUnitPtr unit);

    /// Forgets everything.
    void Clear();

    /// The group so far; empty or beginning with a key frame.
    AccessUnits const& GetUnits() const { return units; }

private:
    Bounds bounds{};
    AccessUnits units;
    std::size_t bytes = 0;
};

} // namespace zarn::host::video
