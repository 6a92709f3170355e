#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace zarn::host::web {

/// The parameters of an `Authorization: Digest ...` field: lower-case name to value, quotes and escapes removed.
/// None when the value is of another scheme, is not well-formed, or names a parameter twice. Source: RFC 9110, 11.4.
std::optional<std::map<std::string, std::string>> ParseDigestParameters(std::string_view authorization);

} // namespace zarn::host::web
