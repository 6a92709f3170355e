#pragma once

#include <zarn/meta/data/container.h>

#include <chrono>
#include <string>
#include <utility>

namespace zarn::meta::data {

/// Something that the analytics found: a rule was met. What it concerns is in it as objects: Channel, Zone, Object
/// (tracked objects) and count::Value.
/// Thread: as Container.
class Event : public object::Typed<Event, Container> {
public:
    static constexpr char const* TypeName = "zarn.meta.data.Event";

    /// type   the type of the rule, such as "presence", "count" or "dwell"
    /// name   the name of the rule, UTF-8
    /// start  when it began
    Event(std::string type, std::string name, std::chrono::system_clock::time_point start)
        : type(std::move(type)), name(std::move(name)), start(start) {}

    /// The type of the rule.
    std::string const& GetType() const noexcept { return type; }

    /// The name of the rule.
    std::string const& GetName() const noexcept { return name; }

    /// When the event began, to the nanosecond.
    std::chrono::system_clock::time_point GetStart() const noexcept { return start; }

private:
    std::string type;
    std::string name;
    std::chrono::system_clock::time_point start;
};

} // namespace zarn::meta::data
