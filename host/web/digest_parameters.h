#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace zarn::host::web {

/// The parameters of an `Authorization: Digest ...` field: lower-case name to value, quotes and escapes removed.
/// None when the value is of another scheme, is not well-formed, or names a parameter twice. Source: RFC 9110, 11.4.
std::optional<std::map<std::string, std::string>> ParseDigestParameters(std::string_view authorization);

/// The same value without the blanks that may stand before "," and "=". They mean nothing, but the SOAP engine takes
/// them for the end of an unquoted value or of a name. Source: RFC 9110, 11.4.
std::string RemoveBlanksBeforeSeparators(std::string_view authorization);

} // namespace zarn::host::web
