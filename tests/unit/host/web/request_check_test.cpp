#include "host/web/request_check.h"

#include <boost/asio/buffer.hpp>
#include <boost/asio/error.hpp>
#include <boost/beast/http/error.hpp>
#include <gtest/gtest.h>

#include <string>

namespace zarn::host::web {
namespace {

namespace http = boost::beast::http;

/// The status with which a header is refused; 0 when it is accepted.
unsigned Check(std::string const& header) {
    RequestParser parser;
    parser.header_limit(1000000);
    boost::beast::error_code error;
    parser.put(boost::asio::buffer(header + "\r\n"), error);
    EXPECT_FALSE(error && error != http::error::need_more) << error.message();
    auto const refusal = CheckHeader(parser);
    return refusal ? static_cast<unsigned>(refusal->GetStatus()) : 0;
}

std::string const Post = "POST /onvif/a HTTP/1.1\r\nHost: h\r\n";
std::string const Get = "GET /a HTTP/1.1\r\nHost: h\r\n";

TEST(RequestCheck, PassesAnOrdinaryRequest) {
    EXPECT_EQ(Check(Get), 0U);
    EXPECT_EQ(Check(Post + "Content-Length: 3\r\n"), 0U);
    EXPECT_EQ(Check(Post + "Content-Length: 0\r\n"), 0U);
    EXPECT_EQ(Check(Post + "Transfer-Encoding: chunked\r\n"), 0U);
}

TEST(RequestCheck, RequiresExactlyOneHost) {
    EXPECT_EQ(Check("GET /a HTTP/1.1\r\n"), 400U);
    EXPECT_EQ(Check(Get + "Host: other\r\n"), 400U);
    EXPECT_EQ(Check("GET /a HTTP/1.0\r\n"), 0U);
}

TEST(RequestCheck, RequiresAHostNameOrAddress) {
    for (auto const* host : {"h", "H.example:8080", "192.0.2.1", "[2001:db8::1]:80", "a-b_c.example", "%41", ""})
        EXPECT_EQ(Check(std::string("GET /a HTTP/1.1\r\nHost: ") + host + "\r\n"), 0U) << host;
    for (auto const* host : {"a b", "a/b", "user@h", "h?x", "h#x", "<h>", "\"h\"", "h\\", "h, h\th", "h\xe4"})
        EXPECT_EQ(Check(std::string("GET /a HTTP/1.1\r\nHost: ") + host + "\r\n"), 400U) << host;
}

TEST(RequestCheck, RequiresATargetInOriginOrAbsoluteForm) {
    EXPECT_EQ(Check("GET http://h/a HTTP/1.1\r\nHost: h\r\n"), 0U);
    EXPECT_EQ(Check("OPTIONS * HTTP/1.1\r\nHost: h\r\n"), 400U);
    EXPECT_EQ(Check("CONNECT h:80 HTTP/1.1\r\nHost: h\r\n"), 400U);
}

TEST(RequestCheck, RequiresAContentLength) {
    EXPECT_EQ(Check(Post), 411U);
    EXPECT_EQ(Check("PUT /a HTTP/1.1\r\nHost: h\r\n"), 411U);
}

TEST(RequestCheck, BoundsTheNumberOfFields) {
    auto const request = [](int fields) {
        auto header = Get;
        for (int i = 1; i < fields; ++i) header += "a: b\r\n";
        return header;
    };
    EXPECT_EQ(Check(request(100)), 0U);
    EXPECT_EQ(Check(request(101)), 431U);
}

TEST(RequestCheck, AcceptsOnlyChunkedAndOnlyInHttp11) {
    EXPECT_EQ(Check(Post + "Transfer-Encoding: gzip, chunked\r\n"), 400U);
    EXPECT_EQ(Check(Post + "Transfer-Encoding:\r\nContent-Length: 3\r\n"), 400U);
    EXPECT_EQ(Check("POST /a HTTP/1.0\r\nTransfer-Encoding: chunked\r\n"), 400U);
}

TEST(RequestCheck, RefusesARepeatedContentLength) {
    EXPECT_EQ(Check(Post + "Content-Length: 3\r\nContent-Length: 3\r\n"), 400U);
    EXPECT_EQ(Check(Post + "Content-Length: 3, 3\r\n"), 400U);
}

TEST(RequestCheck, BoundsTargetAndHostTogether) {
    auto const request = [](std::size_t target, std::size_t host) {
        return "GET /" + std::string(target - 1, 'a') + " HTTP/1.1\r\nHost: " + std::string(host, 'h') + "\r\n";
    };
    EXPECT_EQ(Check(request(900, 100)), 0U);
    EXPECT_EQ(Check(request(901, 100)), 414U);
    EXPECT_EQ(Check(request(1, 1000)), 414U);
}

TEST(RequestCheck, BoundsAFieldLine) {
    auto const field = [](std::size_t length) { return "A: " + std::string(length - 3, 'a') + "\r\n"; };
    EXPECT_EQ(Check(Get + field(MaximumFieldLine)), 0U);
    EXPECT_EQ(Check(Get + field(MaximumFieldLine + 1)), 431U);
}

TEST(RequestCheck, RefusesCompressedContent) {
    EXPECT_EQ(Check(Post + "Content-Length: 3\r\nContent-Encoding: gzip\r\n"), 415U);
    EXPECT_EQ(Check(Post + "Content-Length: 3\r\nContent-Encoding: identity\r\nContent-Encoding: br\r\n"), 415U);
    EXPECT_EQ(Check(Post + "Content-Length: 3\r\nContent-Encoding: Identity\r\n"), 0U);
}

TEST(RequestCheck, MeetsOnly100Continue) {
    EXPECT_EQ(Check(Post + "Content-Length: 3\r\nExpect: 100-Continue\r\n"), 0U);
    EXPECT_EQ(Check(Post + "Content-Length: 3\r\nExpect: a-miracle\r\n"), 417U);
    EXPECT_EQ(Check(Post + "Content-Length: 3\r\nExpect: 100-continue\r\nExpect: a-miracle\r\n"), 417U);
}

TEST(ReadError, HasAStatusWhenTheRequestIsAtFault) {
    auto const status = [](boost::beast::error_code error) {
        auto const refusal = ExplainReadError(error, "GET / HTTP/2.0\r\n", {});
        return refusal ? static_cast<unsigned>(refusal->GetStatus()) : 0U;
    };
    EXPECT_EQ(status(http::error::body_limit), 413U);
    EXPECT_EQ(status(http::error::header_limit), 431U);
    EXPECT_EQ(status(http::error::buffer_overflow), 431U);
    EXPECT_EQ(status(http::error::bad_version), 505U);
    EXPECT_EQ(status(http::error::bad_field), 400U);
    EXPECT_EQ(status(http::error::bad_method), 400U);
}

TEST(ReadError, IsAnUnsupportedVersionOnlyWhenOneIsNamed) {
    auto const status = [](std::string_view received) {
        return static_cast<unsigned>(ExplainReadError(http::error::bad_version, received, {})->GetStatus());
    };
    for (auto const* line : {"GET / HTTP/1.2\r\n", "PRI * HTTP/2.0\r\n\r\nSM\r\n\r\n", "GET / HTTP/0.9\r\nHost: h\r\n"})
        EXPECT_EQ(status(line), 505U) << line;
    for (auto const* line : {"GET / HTTP/1.1\nHost: h\n\n", "GET / HTTP/1.1\n\r\n", "GET / http/1.1\r\n",
                             "GET / HTTP/1.1 \r\n", "GET / HTTP/1.1x\r\n", "GET / HTTP/x.1\r\n", "/1.1\r\n", ""})
        EXPECT_EQ(status(line), 400U) << line;
}

TEST(ReadError, HasNoStatusWhenTheConnectionIsAtFault) {
    EXPECT_FALSE(ExplainReadError(http::error::end_of_stream, {}, {}));
    EXPECT_FALSE(ExplainReadError(http::error::partial_message, {}, {}));
    EXPECT_FALSE(ExplainReadError(boost::asio::error::connection_reset, {}, {}));
    EXPECT_FALSE(ExplainReadError(boost::asio::error::operation_aborted, {}, {}));
}

} // namespace
} // namespace zarn::host::web
