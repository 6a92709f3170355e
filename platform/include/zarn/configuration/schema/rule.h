#pragma once

#include <functional>
#include <string>

namespace zarn::configuration::schema {

/// Which values of type T a node accepts, and how a person is told so.
/// Example: `Rule<std::uint16_t>{"a port (1 to 65535)", {}}` makes "settings.web_port: 70000 is not a port (1 to
/// 65535)" of whatever is no 16-bit number.
template <class T>
struct Rule {
    /// What the value must be; completes "70000 is not ...". Also used for values of another type. Empty: a text that
    /// names the type.
    std::string text;

    /// Whether a value is accepted; empty accepts all values of the type. Must be callable on any thread and must not
    /// use the configuration.
    std::function<bool(T const&)> accepts;

    /// Whether values may hold something secret, so that a refused one is not shown.
    bool secret = false;
};

} // namespace zarn::configuration::schema
