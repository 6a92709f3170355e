#pragma once

#include <zarn/protocol/network/http/response/status.h>

#include <cstddef>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

namespace zarn::container {
class Buffer;
}

namespace zarn::protocol::network::http {

/// A message that is not HTTP/1.x; the text names the part at fault and the rule.
class ParseError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// An HTTP response with its body already decoded.
class Response {
public:
    /// Bounds of Parse: bytes of a status or field line without its line end, bytes and fields of the header of one
    /// response.
    static constexpr std::size_t MaximumLineLength = 8191;
    static constexpr std::size_t MaximumHeaderLength = 65536; ///< bytes of the header
    static constexpr std::size_t MaximumFields = 256;         ///< fields of the header

    /// status  the HTTP status
    /// fields  header fields, name to value
    /// body    the decoded body; never null
    Response(response::Status status, std::map<std::string, std::string> fields,
             std::shared_ptr<container::Buffer> body);

    /// The same with the bytes of the body.
    Response(response::Status status, std::map<std::string, std::string> fields, std::string body);

    /// Reads the first final response of a text that may hold several; what follows it is ignored.
    /// Interim responses (1xx) are skipped. The body is what Transfer-Encoding (chunked only) says, else what
    /// Content-Length says, else everything to the end; 204 and 304 have none. Source: RFC 9112.
    /// The body shares the bytes of the text unless it is chunked.
    /// Throws ParseError when the text is not such a response or ends before the body does.
    static Response Parse(std::shared_ptr<container::Buffer> const& buffer);

    /// The HTTP status.
    response::Status GetStatusCode() const noexcept { return status; }

    /// The fields of the response, those of the framing included; names keep its spelling.
    /// The values of a repeated field (names compared without case) form one entry under the first spelling, in
    /// their order, joined with ", " (RFC 9110, 5.3). So do those of Set-Cookie, which readers have to know.
    std::map<std::string, std::string> const& GetFields() const& noexcept { return fields; }

    /// The same, taken out of a response that is not needed any more.
    std::map<std::string, std::string> GetFields() && noexcept { return std::move(fields); }

    /// The decoded body; valid as long as the response or the buffer lives.
    std::string_view GetBody() const noexcept;

    /// The buffer that holds the decoded body and nothing else; never null.
    std::shared_ptr<container::Buffer> const& GetBuffer() const noexcept { return body; }

private:
    response::Status status;
    std::map<std::string, std::string> fields;
    std::shared_ptr<container::Buffer> body;
};

} // namespace zarn::protocol::network::http
