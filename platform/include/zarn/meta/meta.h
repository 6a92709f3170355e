#pragma once

#include <zarn/meta/tracked_object.h>

#include <chrono>
#include <vector>

namespace zarn::meta {

/// A metadata frame: what the analytics see in one picture of a channel. Never changes, so any thread may read it.
class Meta {
public:
    /// time     when the picture was taken; whole seconds, which is what ONVIF clients are told
    /// objects  in any order
    /// Throws std::invalid_argument for a time that is not in the years 1970 to 9999.
    Meta(std::chrono::sys_seconds time, std::vector<TrackedObject> objects);

    /// When the picture was taken.
    std::chrono::sys_seconds GetTime() const noexcept { return time; }

    /// The objects in the picture.
    std::vector<TrackedObject> const& GetObjects() const noexcept { return objects; }

private:
    std::chrono::sys_seconds time;
    std::vector<TrackedObject> objects;
};

} // namespace zarn::meta
