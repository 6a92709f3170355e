#pragma once

#include <map>
#include <string_view>

namespace zarn::host::web {

/// The value of a header field, its name compared without case; empty when there is none.
std::string_view FindField(std::map<std::string_view, std::string_view> const& fields, std::string_view name);

} // namespace zarn::host::web
