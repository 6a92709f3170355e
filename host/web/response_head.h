#pragma once

#include "host/web/reply.h"

#include <string>

namespace zarn::host::web {

/// What the connection decides about the form of a response.
struct ResponseForm {
    /// Minor version of the request's HTTP/1.x; selects how keep-alive is said.
    unsigned minorVersion = 1;

    /// Whether another request may follow on the connection.
    bool keepAlive = true;
};

/// The header of a response on the wire, blank line included: status line, the web server's own fields (Date, Server,
/// Connection, Content-Length) and the reply's other fields. Whatever a reply says about those four, and
/// Transfer-Encoding and Keep-Alive, is left out: they describe the connection that the server holds, not the content.
/// A name that is no token and a value with a line end or NUL are left out, so that no field can split the message.
/// Content-Length is the size of the reply's body, also when the body is not sent (HEAD); a 204 or 304 has none.
/// A status that is no final HTTP code becomes 500. Source: RFC 9110, RFC 9112.
std::string MakeResponseHead(Reply const& reply, ResponseForm form);

/// Whether a response of this status has a body at all.
bool HasBody(Reply::Status status) noexcept;

} // namespace zarn::host::web
