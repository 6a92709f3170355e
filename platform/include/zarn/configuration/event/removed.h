#pragma once

#include <zarn/configuration/event.h>

namespace zarn::configuration::event {

/// An entry was removed from a collection; GetNode() is the entry, which can still be read but is in no tree.
class Removed : public object::Typed<Removed, Event> {
public:
    static constexpr char const* TypeName = "zarn.configuration.event.Removed";

    using Typed::Typed;
};

} // namespace zarn::configuration::event
