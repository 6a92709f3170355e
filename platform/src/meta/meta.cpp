#include <zarn/meta/meta.h>

#include <stdexcept>
#include <string>
#include <utility>

namespace zarn::meta {

Meta::Meta(std::chrono::sys_seconds time, std::vector<TrackedObject> objects)
    : time(time), objects(std::move(objects)) {
    using namespace std::chrono;
    if (time >= sys_days(year(1970) / 1 / 1) && time < sys_days(year(10000) / 1 / 1)) return;
    throw std::invalid_argument("frame: " + std::to_string(time.time_since_epoch().count()) +
                                " seconds since 1970 is not a time in the years 1970 to 9999");
}

} // namespace zarn::meta
