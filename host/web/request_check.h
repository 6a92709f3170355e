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

/// Checks a request whose header is complete, before the rest is read.
/// Returns the refusal: 400 (no or several Host fields, or an invalid one; an unusable form of target; a transfer
/// coding other than chunked; a length that is given more than once), 411 (a POST or PUT without a length), 414 (target
/// and Host too long), 415 (compressed content), 417 (an expectation other than 100-continue), 431 (a header line too
/// long, or too many of them). None when all is well. Source: RFC 9110, RFC 9112, RFC 6585.
std::optional<Reply> CheckHeader(RequestParser const& parser);

/// The answer to a request that cannot be read: 413, 431, 505 or 400 with the parser's reason; none when the connection
/// itself has failed or ended, so that no answer can be sent.
/// received  what has arrived of the request and could not be read, from its first byte on
std::optional<Reply> ExplainReadError(boost::beast::error_code error, std::string_view received, Limits const& limits);

} // namespace zarn::host::web
