#pragma once

#include "protocol/network/http/message.h"

#include <string>

namespace zarn::protocol::network::http {

/// Reads the body that follows a header, decoded, by the rules of RFC 9112, 6.3: Transfer-Encoding (chunked alone is
/// understood), else Content-Length, else everything up to the end.
/// Throws ParseError when the framing is invalid or the text ends before the body does.
std::string ReadBody(MessageReader& reader, FieldList const& fields);

} // namespace zarn::protocol::network::http
