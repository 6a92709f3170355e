#pragma once

#include <stdexcept>

namespace zarn::protocol::network::http {

/// A message that is not HTTP/1.x; the text names the part at fault and the rule.
class ParseError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

} // namespace zarn::protocol::network::http
