#include "host/web/request_check.h"

#include "host/web/request_target.h"

#include <boost/beast/core/string.hpp>
#include <boost/beast/http/error.hpp>
#include <boost/beast/http/field.hpp>

#include <algorithm>
#include <iterator>
#include <string>

namespace zarn::host::web {
namespace {

namespace http = boost::beast::http;
using Status = Reply::Status;
using Header = http::request<http::string_body>;

std::optional<Reply> CheckAddress(Header const& header) {
    auto const hosts = header.count(http::field::host);
    if (hosts > 1 || (hosts == 0 && header.version() >= 11)) {
        return MakeTextReply(Status::BadRequest, "A request has exactly one Host field.");
    }
    if (header.target().size() + header[http::field::host].size() > MaximumTargetAndHost) {
        return MakeTextReply(Status::UriTooLong, "Request target and Host field are together longer than " +
                                                     std::to_string(MaximumTargetAndHost) + " bytes.");
    }
    if (!ToOriginForm(header.target())) {
        return MakeTextReply(Status::BadRequest, "The request target is neither a path nor an http address.");
    }
    return std::nullopt;
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
    auto const coding = header[http::field::content_encoding];
    if (!coding.empty() && !boost::beast::iequals(coding, "identity")) {
        return MakeTextReply(Status::UnsupportedMediaType, "Compressed content is not taken.",
                             {{"Accept-Encoding", "identity"}});
    }
    auto const expectation = header[http::field::expect];
    if (!expectation.empty() && !boost::beast::iequals(expectation, "100-continue")) {
        return MakeTextReply(Status::ExpectationFailed, "The only expectation that is met is 100-continue.");
    }
    return std::nullopt;
}

std::optional<Reply> CheckLength(RequestParser const& parser) {
    auto const& header = parser.get();
    // Whoever stands in front of this server might see another end of a body that is coded otherwise.
    if (auto const coding = header[http::field::transfer_encoding];
        !coding.empty() && (header.version() < 11 || !boost::beast::iequals(coding, "chunked"))) {
        return MakeTextReply(Status::BadRequest, "The only transfer coding that is taken is chunked, in HTTP/1.1.");
    }
    auto const method = header.method();
    bool const hasContent = method == http::verb::post || method == http::verb::put;
    if (hasContent && !parser.content_length() && !parser.chunked()) {
        return MakeTextReply(Status::LengthRequired, "The request says neither Content-Length nor that it is chunked.");
    }
    return std::nullopt;
}

} // namespace

std::optional<Reply> CheckHeader(RequestParser const& parser) {
    if (auto refusal = CheckAddress(parser.get())) return refusal;
    if (auto refusal = CheckFields(parser.get())) return refusal;
    return CheckLength(parser);
}

std::optional<Reply> ExplainReadError(boost::beast::error_code error, Limits const& limits) {
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
    if (error == http::error::bad_version) {
        return MakeTextReply(Status::HttpVersionNotSupported, "Only HTTP/1.0 and HTTP/1.1 are spoken.");
    }
    return MakeTextReply(Status::BadRequest, "This is not an HTTP request: " + error.message() + ".");
}

} // namespace zarn::host::web
