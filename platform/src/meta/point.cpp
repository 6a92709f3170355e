#include <zarn/meta/point.h>

#include <cmath>
#include <stdexcept>
#include <string>

namespace zarn::meta {

Point::Point(double x, double y) : x(x), y(y) {
    if (std::isfinite(x) && std::isfinite(y)) return;
    throw std::invalid_argument("(" + std::to_string(x) + ", " + std::to_string(y) + ") is not a place in a picture");
}

} // namespace zarn::meta
