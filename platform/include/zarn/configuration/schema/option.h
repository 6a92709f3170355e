#pragma once

#include <zarn/type/flags.h>

namespace zarn::configuration::schema {

/// What is special about a node.
enum class Option : unsigned short {
    /// The program sets it; text, JSON and files must not change it, and files do not hold it.
    ReadOnly = 1,
    /// It can be set, and files hold it, but it is shown to nobody, nor quoted in errors.
    WriteOnly = 2,
    /// Files hold it only when they did before or when it differs from its default.
    Optional = 4,
};

/// A set of options.
using Options = type::Flags<Option, unsigned short, 64>;

} // namespace zarn::configuration::schema
