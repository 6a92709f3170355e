#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace zarn::host::web {

/// The origin form ("/path?query") of a request target in origin or absolute form ("http://host/path?query"), which
/// every server has to accept. Nothing for any other form. Source: RFC 9112, 3.2. Boost.URL is not used, because it
/// refuses characters that HTTP clients send.
std::optional<std::string> ToOriginForm(std::string_view target);

/// The path of an origin-form target: the text before the first "?".
std::string_view GetPath(std::string_view target);

} // namespace zarn::host::web
