#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace zarn::host {

/// The parameters of a `Digest` challenge or of digest credentials: lower-case name to value, quotes and escapes
/// removed.
using DigestParameters = std::map<std::string, std::string>;

/// Parses the value of an Authorization or WWW-Authenticate field. Returns nothing when the value is of another scheme,
/// is not well-formed, or names a parameter twice. Source: RFC 9110, 11.4.
std::optional<DigestParameters> ParseDigestParameters(std::string_view field);

/// The value of a parameter; empty when there is none.
/// name  in lower case
std::string const& Find(DigestParameters const& parameters, std::string const& name);

} // namespace zarn::host
