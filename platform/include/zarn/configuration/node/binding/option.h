#pragma once

#include <zarn/type/flags.h>

namespace zarn::configuration::node::binding {

/// How Node::Bind binds a callback.
enum class Option : unsigned short {
    /// The current value is delivered once, as event::Changed of the bound node, before Bind returns.
    DeliverCurrent = 1,
};

/// A set of options.
using Options = type::Flags<Option, unsigned short, 64>;

} // namespace zarn::configuration::node::binding
