#pragma once

#include <zarn/protocol/network/http/method.h>

#include <iosfwd>
#include <map>
#include <string>

namespace zarn::protocol::network::http {

/// An HTTP request with its body already decoded.
class Request {
public:
    /// target  in origin form, for example "/onvif/device_service?a=b"
    /// body    the decoded body
    /// fields  header fields, name to value
    Request(Method method, std::string target, std::string body, std::map<std::string, std::string> fields);

    /// The method.
    Method GetMethod() const noexcept { return method; }

    /// The target in origin form.
    std::string const& GetTarget() const noexcept { return target; }

    /// The decoded body.
    std::string const& GetBody() const noexcept { return body; }

    /// The header fields, name to value.
    std::map<std::string, std::string> const& GetFields() const noexcept { return fields; }

private:
    Method method;
    std::string target;
    std::string body;
    std::map<std::string, std::string> fields;
};

/// Writes the request as one HTTP/1.1 message (RFC 9112): request line, fields, blank line, body.
/// The framing is the writer's: fields named Content-Length or Transfer-Encoding (in any case) are left out and a true
/// Content-Length is written, also for an empty body. Nothing that a peer put into target or fields can end a line:
/// in the target, spaces, control characters and bytes above 0x7e are percent-encoded (an empty one is "/"); in a
/// value, CR, LF and NUL become spaces (RFC 9110, 5.5); a field whose name is not a token (RFC 9110, 5.6.2) is left
/// out.
std::ostream& operator<<(std::ostream& stream, Request const& request);

} // namespace zarn::protocol::network::http
