#pragma once

#include <cstddef>
#include <string_view>

namespace zarn::logging::utf8 {

/// The first character of a text.
struct Character {
    std::size_t length; ///< in bytes, at least 1
    bool printable;     ///< false for control characters (C0, DEL, C1) and for a byte that is no part of UTF-8
};

/// Reads the first character of `text`, which must not be empty. Source: RFC 3629, 4.
Character ReadCharacter(std::string_view text) noexcept;

} // namespace zarn::logging::utf8
