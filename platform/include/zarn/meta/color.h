#pragma once

#include <cstdint>

namespace zarn::meta {

/// A colour, each part from 0 to 255.
struct Color {
    std::uint8_t red;
    std::uint8_t green;
    std::uint8_t blue;

    bool operator==(Color const&) const = default;
};

} // namespace zarn::meta
