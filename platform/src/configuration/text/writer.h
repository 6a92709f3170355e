#pragma once

#include <boost/json/fwd.hpp>

#include <string>

namespace zarn::configuration::text {

/// Appends a JSON value, indented by two spaces per level.
/// level  the level of the value itself
void Write(boost::json::value const& json, std::string& text, std::size_t level = 0);

/// The shortest text that reads as the same number, and as one with a fraction.
std::string WriteDouble(double number);

} // namespace zarn::configuration::text
