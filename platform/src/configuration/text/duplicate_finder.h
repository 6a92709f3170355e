#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace zarn::configuration::text {

/// A key that an object has twice.
struct Duplicate {
    /// Dotted, without the indices of arrays.
    std::string path;
    /// Where the second one ends in the text, in bytes.
    std::size_t offset = 0;
};

/// The first key that occurs twice in one object of a JSON text. A parser that makes values would silently keep one.
std::optional<Duplicate> FindDuplicate(std::string_view text);

} // namespace zarn::configuration::text
