#include "host/video/access_unit.h"

#include <utility>

namespace zarn::host::video {

void GroupOfPictures::Add(AccessUnitPtr unit) {
    if (unit->isKey) {
        Clear();
    } else if (units.empty()) {
        return;
    }
    bytes += unit->size;
    units.push_back(std::move(unit));
    if (units.size() > bounds.units || bytes > bounds.bytes) Clear();
}

void GroupOfPictures::Clear() {
    units.clear();
    bytes = 0;
}

} // namespace zarn::host::video
