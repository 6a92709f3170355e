#pragma once

#include <boost/json/fwd.hpp>

#include <string>
#include <string_view>

namespace zarn::configuration::schema {

/// A value as errors quote it: as JSON, cut short when it is long.
std::string Quote(boost::json::value const& json);

/// A typed text as errors quote it: numbers as they are, everything else as a JSON string, cut short when
/// it is long. What is not UTF-8 is not quoted, only named.
std::string Quote(std::string_view text);

} // namespace zarn::configuration::schema
