#pragma once

#include "host/web/reply.h"

#include <string>

namespace zarn::host::web {

/// The part of a response's form that the connection decides.
struct ResponseForm {
    /// Minor version of the request's HTTP/1.x, which decides how the Connection field says keep-alive.
    unsigned minorVersion = 1;

    /// Whether another request may follow on the connection.
    bool keepAlive = true;
};

/// The header of a response on the wire, blank line included: status line, the web server's own fields (Date, Server,
/// Connection, Content-Length) and the reply's other fields. Those four fields of the reply, its Transfer-Encoding and
/// its Keep-Alive are left out: they describe the server's connection, not the content. A field whose name is not a
/// token or whose value contains a line end or NUL is left out, so that no field can split the message.
/// Content-Length is the size of the reply's body, also when the body is not sent (HEAD); a 204 or 304 has none.
/// A status that is not a final HTTP code becomes 500. Source: RFC 9110, RFC 9112.
std::string MakeResponseHead(Reply const& reply, ResponseForm form);

/// Whether a response of this status has a body at all.
bool HasBody(Status status) noexcept;

} // namespace zarn::host::web
