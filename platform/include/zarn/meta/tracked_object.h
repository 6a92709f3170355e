#pragma once

#include <zarn/meta/box.h>
#include <zarn/meta/data/classification/confidence.h>

#include <cstdint>
#include <optional>
#include <vector>

namespace zarn::meta {

/// A colour, each part from 0 to 255.
struct Color {
    std::uint8_t red;   ///< share of red
    std::uint8_t green; ///< share of green
    std::uint8_t blue;  ///< share of blue

    bool operator==(Color const&) const = default;
};

/// What a tracker knows of an object in one frame.
struct TrackedObject {
    /// The number by which the tracker knows it in every frame; that of data::Object in events.
    std::uint32_t number;

    /// The smallest rectangle that holds it.
    Box boundingBox;

    /// The centre of its area.
    Point centerOfGravity;

    /// What it may be, each with its likelihood. Empty when no classifier has looked at it.
    std::vector<data::classification::Confidence> classes;

    /// The colour that most of it has, when that is known.
    std::optional<Color> color;
};

} // namespace zarn::meta
