#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace zarn::host::web {

/// The origin form ("/path?query") of a request target: absolute-form targets ("http://host/path?query") lose scheme
/// and authority, as every server has to take them; origin-form targets stay as they are. None for any other form.
/// Source: RFC 9112, 3.2.
std::optional<std::string> ToOriginForm(std::string_view target);

/// The path of an origin-form target: what stands before the first "?".
std::string_view GetPath(std::string_view target);

} // namespace zarn::host::web
