#include "host/web/request_check.h"

#include "host/web/request_target.h"

#include <boost/beast/core/string.hpp>
#include <boost/beast/http/error.hpp>
#include <boost/beast/http/field.hpp>

#include <algorithm>
#include <iterator>
#include <string>
#include <string_view>

namespace zarn::host::web {
namespace {

namespace http = boost::beast::http;
using Header = http::request<http::string_body>;

/// Whether a Host field can be a name or an address, with or without a port: checks its characters, not their order. It
/// is empty when the client has no name for the server.
/// Source: RFC 9112, 3.2; RFC 3986, 3.2.
bool IsHost(std::string_view host) {
    constexpr std::string_view Allowed =
        "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz-._~%!$&'()*+,;=:[]";
    return host.find_first_not_of(Allowed) == std::string_view::npos;
}

std::optional<Reply> CheckAddress(Header const& header) {
    auto const hosts = header.count(http::field::host);
    if (hosts > 1 || (hosts == 0 && header.version() >= 11)) {
        return MakeTextReply(Status::BadRequest, "A request has exactly one Host field.");
    }
    if (header.target().size() + header[http::field::host].size() > MaximumTargetAndHost) {
        return MakeTextReply(Status::UriTooLong, "Request target and Host field are together longer than " +
                                                     std::to_string(MaximumTargetAndHost) + " bytes.");
    }
    if (!IsHost(header[http::field::host])) {
        return MakeTextReply(Status::BadRequest, "The Host field is neither a name nor an address.");
    }
    if (!header.target().starts_with('/') && !ToOriginForm(header.target())) {
        return MakeTextReply(Status::BadRequest, "The request target is neither a path nor an http address.");
    }
    return std::nullopt;
}

/// Whether every field of this name is empty or has this value.
bool IsOnly(Header const& header, http::field name, std::string_view value) {
    auto const [first, last] = header.equal_range(name);
    return std::all_of(first, last, [value](auto const& field) {
        return field.value().empty() || boost::beast::iequals(field.value(), value);
    });
}

std::optional<Reply> CheckFields(Header const& header) {
    if (std::distance(header.begin(), header.end()) > MaximumFields) {
        return MakeTextReply(Status::RequestHeaderFieldsTooLarge,
                             "The header has more than " + std::to_string(MaximumFields) + " fields.");
    }
    for (auto const& field : header) {
        if (field.name_string().size() + 2 + field.value().size() > MaximumFieldLine) {
            return MakeTextReply(Status::RequestHeaderFieldsTooLarge,
                                 "A header field is longer than " + std::to_string(MaximumFieldLine) + " bytes.");
        }
    }
    // Decompression would let a small request grow past every bound.
    if (!IsOnly(header, http::field::content_encoding, "identity")) {
        return MakeTextReply(Status::UnsupportedMediaType, "Compressed content is not supported.",
                             {{"Accept-Encoding", "identity"}});
    }
    if (!IsOnly(header, http::field::expect, "100-continue")) {
        return MakeTextReply(Status::ExpectationFailed, "The only supported expectation is 100-continue.");
    }
    return std::nullopt;
}

/// Whether the first line ends with a version of HTTP and a line end of HTTP.
/// Source: RFC 9112, 2.3.
bool NamesVersion(std::string_view received) {
    constexpr std::string_view Form = " HTTP/0.0";
    auto const end = received.find("\r\n");
    if (end == std::string_view::npos || end < Form.size()) return false;
    auto const version = received.substr(end - Form.size(), Form.size());
    return std::equal(version.begin(), version.end(), Form.begin(),
                      [](char each, char form) { return form == '0' ? each >= '0' && each <= '9' : each == form; });
}

std::optional<Reply> CheckLength(RequestParser const& parser) {
    auto const& header = parser.get();
    // A proxy in front of this server might see another end of a body with another transfer coding.
    if (header.count(http::field::transfer_encoding) > 0 &&
        (header.version() < 11 || !boost::beast::iequals(header[http::field::transfer_encoding], "chunked"))) {
        return MakeTextReply(Status::BadRequest, "The only supported transfer coding is chunked, in HTTP/1.1.");
    }
    // It might also use another one of several lengths, even of lengths that look equal here.
    if (header.count(http::field::content_length) > 1 ||
        header[http::field::content_length].find(',') != std::string_view::npos) {
        return MakeTextReply(Status::BadRequest, "The length of the body is given more than once.");
    }
    auto const method = header.method();
    bool const hasContent = method == http::verb::post || method == http::verb::put;
    if (hasContent && !parser.content_length() && !parser.chunked()) {
        return MakeTextReply(Status::LengthRequired, "The request has neither Content-Length nor chunked coding.");
    }
    return std::nullopt;
}

} // namespace

std::optional<Reply> CheckHeader(RequestParser const& parser) {
    if (auto refusal = CheckAddress(parser.get())) return refusal;
    if (auto refusal = CheckFields(parser.get())) return refusal;
    return CheckLength(parser);
}

std::optional<Reply> ExplainReadError(boost::beast::error_code error, std::string_view received, Limits const& limits) {
    static boost::system::error_category const& httpCategory =
        http::make_error_code(http::error::bad_method).category();
    if (error.category() != httpCategory) return std::nullopt;
    if (error == http::error::end_of_stream || error == http::error::partial_message) return std::nullopt;
    if (error == http::error::body_limit) {
        return MakeTextReply(Status::ContentTooLarge,
                             "The body is longer than " + std::to_string(limits.bodyBytes) + " bytes.");
    }
    if (error == http::error::header_limit || error == http::error::buffer_overflow) {
        return MakeTextReply(Status::RequestHeaderFieldsTooLarge,
                             "The header is longer than " + std::to_string(MaximumHeader) + " bytes.");
    }
    if (error == http::error::bad_version && NamesVersion(received)) {
        return MakeTextReply(Status::HttpVersionNotSupported, "Only HTTP/1.0 and HTTP/1.1 are supported.");
    }
    return MakeTextReply(Status::BadRequest, "This is not an HTTP request: " + error.message() + ".");
}

} // namespace zarn::host::web
