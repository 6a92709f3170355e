#include <zarn/meta/meta.h>

#include <cmath>
#include <stdexcept>
#include <string>
#include <utility>

namespace zarn::meta {

namespace {

void CheckOrder(char const* names, double first, double second) {
    if (first <= second) return;
    throw std::invalid_argument(std::string("box: ") + names + ": " + std::to_string(first) + " is beyond " +
                                std::to_string(second));
}

} // namespace

Point::Point(double x, double y) : x(x), y(y) {
    if (std::isfinite(x) && std::isfinite(y)) return;
    throw std::invalid_argument("(" + std::to_string(x) + ", " + std::to_string(y) + ") is not a place in a picture");
}

Box::Box(Point topLeft, Point bottomRight) : topLeft(topLeft), bottomRight(bottomRight) {
    CheckOrder("left and right", topLeft.GetX(), bottomRight.GetX());
    CheckOrder("top and bottom", topLeft.GetY(), bottomRight.GetY());
}

Meta::Meta(std::chrono::sys_seconds time, std::vector<TrackedObject> objects)
    : time(time), objects(std::move(objects)) {
    using namespace std::chrono;
    if (time >= sys_days(year(1970) / 1 / 1) && time < sys_days(year(10000) / 1 / 1)) return;
    throw std::invalid_argument("frame: " + std::to_string(time.time_since_epoch().count()) +
                                " seconds since 1970 is not a time in the years 1970 to 9999");
}

} // namespace zarn::meta
