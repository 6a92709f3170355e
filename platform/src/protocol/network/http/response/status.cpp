#include <zarn/protocol/network/http/response/status.h>

#include <algorithm>
#include <array>

namespace zarn::protocol::network::http::response {

namespace {

struct Row {
    Status status;
    std::string_view reason;
};

constexpr std::array Rows{
    Row{Status::Continue, "Continue"},
    Row{Status::SwitchingProtocols, "Switching Protocols"},
    Row{Status::Ok, "OK"},
    Row{Status::Created, "Created"},
    Row{Status::Accepted, "Accepted"},
    Row{Status::NonAuthoritativeInformation, "Non-Authoritative Information"},
    Row{Status::NoContent, "No Content"},
    Row{Status::ResetContent, "Reset Content"},
    Row{Status::PartialContent, "Partial Content"},
    Row{Status::MultipleChoices, "Multiple Choices"},
    Row{Status::MovedPermanently, "Moved Permanently"},
    Row{Status::Found, "Found"},
    Row{Status::SeeOther, "See Other"},
    Row{Status::NotModified, "Not Modified"},
    Row{Status::TemporaryRedirect, "Temporary Redirect"},
    Row{Status::PermanentRedirect, "Permanent Redirect"},
    Row{Status::BadRequest, "Bad Request"},
    Row{Status::Unauthorized, "Unauthorized"},
    Row{Status::Forbidden, "Forbidden"},
    Row{Status::NotFound, "Not Found"},
    Row{Status::MethodNotAllowed, "Method Not Allowed"},
    Row{Status::NotAcceptable, "Not Acceptable"},
    Row{Status::RequestTimeout, "Request Timeout"},
    Row{Status::Conflict, "Conflict"},
    Row{Status::Gone, "Gone"},
    Row{Status::LengthRequired, "Length Required"},
    Row{Status::PreconditionFailed, "Precondition Failed"},
    Row{Status::ContentTooLarge, "Content Too Large"},
    Row{Status::UriTooLong, "URI Too Long"},
    Row{Status::UnsupportedMediaType, "Unsupported Media Type"},
    Row{Status::RangeNotSatisfiable, "Range Not Satisfiable"},
    Row{Status::ExpectationFailed, "Expectation Failed"},
    Row{Status::MisdirectedRequest, "Misdirected Request"},
    Row{Status::UnprocessableContent, "Unprocessable Content"},
    Row{Status::UpgradeRequired, "Upgrade Required"},
    Row{Status::PreconditionRequired, "Precondition Required"},
    Row{Status::TooManyRequests, "Too Many Requests"},
    Row{Status::RequestHeaderFieldsTooLarge, "Request Header Fields Too Large"},
    Row{Status::InternalServerError, "Internal Server Error"},
    Row{Status::NotImplemented, "Not Implemented"},
    Row{Status::BadGateway, "Bad Gateway"},
    Row{Status::ServiceUnavailable, "Service Unavailable"},
    Row{Status::GatewayTimeout, "Gateway Timeout"},
    Row{Status::HttpVersionNotSupported, "HTTP Version Not Supported"},
    Row{Status::NetworkAuthenticationRequired, "Network Authentication Required"},
};

} // namespace

std::string_view ToString(Status status) noexcept {
    auto const* row = std::ranges::find(Rows, status, &Row::status);
    return row == Rows.end() ? std::string_view() : row->reason;
}

} // namespace zarn::protocol::network::http::response
