#pragma once

#include <boost/json/fwd.hpp>

#include <string>
#include <string_view>

namespace zarn::host::events {

/// A value as messages quote it: as JSON, cut short when it is long; "a list" or "an object" for those.
std::string Quote(boost::json::value const& value);

/// A key as messages name it: as it is when it is a word, else as Quote would.
std::string QuoteKey(std::string_view key);

} // namespace zarn::host::events
