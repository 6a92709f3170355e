#pragma once

#include "host/web/limits.h"
#include "host/web/reply.h"

#include <boost/beast/core/error.hpp>
#include <boost/beast/http/message.hpp>
#include <boost/beast/http/parser.hpp>
#include <boost/beast/http/string_body.hpp>

#include <optional>
#include <string_view>

namespace zarn::host::web {

using RequestParser = boost::beast::http::request_parser<boost::beast::http::string_body>;

/// Whether a request whose header is complete may be read further.
/// Returns the refusal: 400 (no or several Host fields, or one that is no host; a target of no usable form; a transfer
/// coding other than chunked; a length that is said more than once), 411 (a POST or PUT that does not say how long it
/// is), 414 (target and Host too long), 415 (compressed content), 417 (an expectation other than 100-continue), 431 (a
/// header line too long, too many of them). None when all is well. Source: RFC 9110, RFC 9112, RFC 6585.
std::optional<Reply> CheckHeader(RequestParser const& parser);

/// The answer to a request that cannot be read: 413, 431, 505 or 400 with the parser's reason; none when the connection
/// itself has failed or ended, so that there is nobody to answer.
/// received  what has come of the request and could not be read, from its first byte on
std::optional<Reply> ExplainReadError(boost::beast::error_code error, std::string_view received, Limits const& limits);

} // namespace zarn::host::web
