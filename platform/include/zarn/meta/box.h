#pragma once

namespace zarn::meta {

/// A place in a picture: fractions of its width and height from its top left corner, y downwards, so that it holds for
/// every size at which the picture is looked at. (0, 0) is the top left corner, (1, 1) the bottom right one. It
/// may lie outside the picture, because trackers follow objects that leave it.
class Point {
public:
    /// Throws std::invalid_argument when one of the two is not a finite number.
    Point(double x, double y);

    /// As a fraction of the width.
    double GetX() const noexcept { return x; }

    /// As a fraction of the height, downwards.
    double GetY() const noexcept { return y; }

    bool operator==(Point const&) const = default;

private:
    double x;
    double y;
};

/// An upright rectangle in a picture. It may be empty, and may reach beyond the picture.
class Box {
public:
    /// Throws std::invalid_argument when a corner is not where its name says.
    Box(Point topLeft, Point bottomRight);

    /// The corner with the lowest x and y.
    Point GetTopLeft() const noexcept { return topLeft; }

    /// The corner with the highest x and y.
    Point GetBottomRight() const noexcept { return bottomRight; }

    bool operator==(Box const&) const = default;

private:
    Point topLeft;
    Point bottomRight;
};

} // namespace zarn::meta
