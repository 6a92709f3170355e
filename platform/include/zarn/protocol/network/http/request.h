#pragma once

#include <zarn/protocol/network/http/method.h>

#include <cstddef>
#include <iosfwd>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zarn::protocol::network::http {

/// An HTTP request with its body already decoded. Holds the message as it is sent, so that writing it copies nothing.
class Request {
public:
    /// Header fields, name to value.
    using Fields = std::map<std::string_view, std::string_view>;

    /// target  in origin form, for example "/onvif/device_service?a=b"
    /// body    the decoded body
    /// fields  header fields, name to value
    Request(Method method, std::string_view target, std::string_view body, Fields const& fields);

    /// The same for fields that are texts of their own.
    Request(Method method, std::string const& target, std::string const& body,
            std::map<std::string, std::string> const& fields);

    /// The header fields of the message in its order; valid as long as the request lives.
    std::vector<std::pair<std::string_view, std::string_view>> GetFields() const;

    /// The decoded body; valid as long as the request lives.
    std::string_view GetBody() const noexcept { return std::string_view(text).substr(header); }

    /// The whole message, see operator<<; valid as long as the request lives.
    std::string const& GetText() const noexcept { return text; }

private:
    std::string text;
    std::size_t header = 0; ///< bytes of the message before the body
};

/// Writes the request as one HTTP/1.1 message (RFC 9112): request line, fields, blank line, body.
/// The framing is the writer's: fields named Content-Length or Transfer-Encoding (in any case) are left out and a true
/// Content-Length is written, also for an empty body. Nothing that a peer put into target or fields can end a line:
/// in the target, spaces, control characters and bytes above 0x7e are percent-encoded (an empty one is "/"); in a
/// value, CR, LF and NUL become spaces (RFC 9110, 5.5); a field whose name is not a token (RFC 9110, 5.6.2) is left
/// out.
std::ostream& operator<<(std::ostream& stream, Request const& request);

} // namespace zarn::protocol::network::http
