#include <zarn/meta/box.h>

#include <stdexcept>
#include <string>

namespace zarn::meta {

namespace {

void CheckOrder(char const* names, double first, double second) {
    if (first <= second) return;
    throw std::invalid_argument(std::string("box: ") + names + ": " + std::to_string(first) + " is beyond " +
                                std::to_string(second));
}

} // namespace

Box::Box(Point topLeft, Point bottomRight) : topLeft(topLeft), bottomRight(bottomRight) {
    CheckOrder("left and right", topLeft.GetX(), bottomRight.GetX());
    CheckOrder("top and bottom", topLeft.GetY(), bottomRight.GetY());
}

} // namespace zarn::meta
