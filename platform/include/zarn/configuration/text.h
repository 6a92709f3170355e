#pragma once

#include <boost/json/fwd.hpp>

#include <string>
#include <string_view>

namespace zarn::configuration::text {

/// Reads the text of a configuration file.
/// Throws Error that names line and column, for text that is no JSON, for a key that occurs twice in one object (naming
/// its path), for more than 32 levels, and for more than 16 MiB.
boost::json::value Parse(std::string_view text);

/// The text of a configuration file: indented by two spaces, members in their order, a line feed at the end.
/// Parse(Format(value)) equals value.
std::string Format(boost::json::value const& json);

} // namespace zarn::configuration::text
