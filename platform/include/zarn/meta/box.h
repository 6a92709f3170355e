#pragma once

#include <zarn/meta/point.h>

namespace zarn::meta {

/// An upright rectangle in a picture. It may be empty, and may reach beyond the picture.
class Box {
public:
    /// Throws std::invalid_argument when a corner is not where its name says.
    Box(Point topLeft, Point bottomRight);

    Point GetTopLeft() const noexcept { return topLeft; }

    Point GetBottomRight() const noexcept { return bottomRight; }

    bool operator==(Box const&) const = default;

private:
    Point topLeft;
    Point bottomRight;
};

} // namespace zarn::meta
