#pragma once

#include <cstddef>
#include <cstdint>
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

/// A number between two bounds, both included.
Rule<std::uint32_t> Between(std::uint32_t least, std::uint32_t most);

/// A port to listen on.
Rule<std::uint16_t> Port();

/// A text that can be shown in one line and written into XML: at most 256 bytes of UTF-8.
Rule<std::string> Line();

/// The same with at most this many characters (code points).
Rule<std::string> Line(std::size_t characters);

} // namespace zarn::configuration::schema
