#pragma once

#include <zarn/configuration/event.h>

namespace zarn::configuration::event {

/// A value was set, a collection was put in another order, or a new binding is told how its node stands.
class Changed : public object::Typed<Changed, Event> {
public:
    static constexpr char const* TypeName = "zarn.configuration.event.Changed";

    using Typed::Typed;
};

} // namespace zarn::configuration::event
