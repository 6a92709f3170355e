#pragma once

#include <boost/json/fwd.hpp>

#include <string_view>

namespace zarn::host::events {

/// Parses a text of events: one object, or a list. Beside the grammar of JSON (RFC 8259) it keeps the bounds of
/// bounds.h and refuses a key that occurs twice in an object. The text must be UTF-8.
/// Throws ReadError that says where.
boost::json::value ParseDocument(std::string_view text);

} // namespace zarn::host::events
