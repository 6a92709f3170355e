#pragma once

#include <zarn/configuration/event.h>

namespace zarn::configuration::event {

/// An entry was added to a collection; GetNode() is the entry, complete with its values.
class Added : public object::Typed<Added, Event> {
public:
    static constexpr char const* TypeName = "zarn.configuration.event.Added";

    using Typed::Typed;
};

} // namespace zarn::configuration::event
