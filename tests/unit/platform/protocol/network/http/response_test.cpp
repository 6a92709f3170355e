#include <zarn/container/buffer.h>
#include <zarn/protocol/network/http/response.h>

#include <gtest/gtest.h>

#include <string>

namespace zarn::protocol::network::http {
namespace {

using response::Status;
using Fields = std::map<std::string, std::string>;

Response Parse(std::string text) { return Response::Parse(std::make_shared<container::Buffer>(std::move(text))); }

/// The error reported by Parse, or "accepted".
std::string ErrorOf(std::string text) {
    try {
        Parse(std::move(text));
        return "accepted";
    } catch (ParseError const& error) {
        return error.what();
    }
}

TEST(HttpResponse, YieldsStatusFieldsAndBody) {
    auto const response = Parse("HTTP/1.1 200 OK\r\nContent-Type: text/xml\r\nContent-Length: 4\r\n\r\n<x/>");
    EXPECT_EQ(response.GetStatusCode(), Status::Ok);
    EXPECT_EQ(response.GetFields(), (Fields{{"Content-Type", "text/xml"}, {"Content-Length", "4"}}));
    EXPECT_EQ(response.GetBody(), "<x/>");
}

TEST(HttpResponse, ReadsTheFirstOfTwoByContentLength) {
    auto const response = Parse("HTTP/1.1 401 Unauthorized\r\nContent-Length: 5\r\n\r\nfirst"
                                "HTTP/1.1 500 Internal Server Error\r\nContent-Length: 6\r\n\r\nsecond");
    EXPECT_EQ(response.GetStatusCode(), Status::Unauthorized);
    EXPECT_EQ(response.GetBody(), "first");
}

TEST(HttpResponse, ReadsTheFirstOfTwoWithAnEmptyBody) {
    EXPECT_EQ(Parse("HTTP/1.1 202 Accepted\r\nContent-Length: 0\r\n\r\nHTTP/1.1 200 OK\r\n\r\nsecond").GetBody(), "");
}

TEST(HttpResponse, ReadsToTheEndWithoutAContentLength) {
    EXPECT_EQ(Parse("HTTP/1.1 200 OK\r\nConnection: close\r\n\r\nall\r\n\r\nof it").GetBody(), "all\r\n\r\nof it");
}

TEST(HttpResponse, SkipsInterimResponses) {
    auto const response = Parse("HTTP/1.1 100 Continue\r\n\r\n"
                                "HTTP/1.1 103 Early Hints\r\nLink: a\r\nContent-Length: 9\r\n\r\n"
                                "HTTP/1.1 200 OK\r\nContent-Length: 1\r\n\r\nx");
    EXPECT_EQ(response.GetStatusCode(), Status::Ok);
    EXPECT_EQ(response.GetFields(), (Fields{{"Content-Length", "1"}}));
    EXPECT_EQ(response.GetBody(), "x");
}

TEST(HttpResponse, NeedsAFinalResponseAfterInterimOnes) {
    EXPECT_EQ(ErrorOf("HTTP/1.1 100 Continue\r\n\r\n"), "line 3: the text ends within the line");
}

TEST(HttpResponse, DecodesChunks) {
    auto const response = Parse("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n"
                                "4\r\n<a>\n\r\nA;name=value\r\n0123456789\r\n0\r\nTrailer: x\r\n\r\nrest");
    EXPECT_EQ(response.GetBody(), "<a>\n0123456789");
    EXPECT_EQ(response.GetFields(), (Fields{{"Transfer-Encoding", "chunked"}}));
}

TEST(HttpResponse, ReadsTheFirstOfTwoInChunks) {
    EXPECT_EQ(Parse("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n1\r\nx\r\n0\r\n\r\nHTTP/1.1 500 No\r\n\r\n")
                  .GetBody(),
              "x");
}

TEST(HttpResponse, PrefersChunksToAContentLength) {
    EXPECT_EQ(Parse("HTTP/1.1 200 OK\r\nContent-Length: 1\r\nTransfer-Encoding: Chunked\r\n\r\n2\r\nxy\r\n0\r\n\r\n")
                  .GetBody(),
              "xy");
}

TEST(HttpResponse, HasNoBodyWhereTheStatusForbidsIt) {
    EXPECT_EQ(Parse("HTTP/1.1 204 No Content\r\n\r\nHTTP/1.1 200 OK\r\n\r\n").GetBody(), "");
    EXPECT_EQ(Parse("HTTP/1.1 304 Not Modified\r\nContent-Length: 5\r\n\r\n").GetBody(), "");
}

TEST(HttpResponse, MayLackTheReasonPhrase) {
    EXPECT_EQ(Parse("HTTP/1.1 200\r\n\r\n").GetStatusCode(), Status::Ok);
    EXPECT_EQ(Parse("HTTP/1.1 200 \r\n\r\n").GetStatusCode(), Status::Ok);
    EXPECT_EQ(Parse("HTTP/1.0 500 a b  c\r\n\r\n").GetStatusCode(), Status::InternalServerError);
}

TEST(HttpResponse, KeepsCodesWithoutAName) { EXPECT_EQ(Parse("HTTP/1.1 599 x\r\n\r\n").GetStatusCode(), Status{599}); }

TEST(HttpResponse, FindsTheFramingInAnyCase) {
    EXPECT_EQ(Parse("HTTP/1.1 200 OK\r\ncOnTeNt-LeNgTh: 1\r\n\r\nxy").GetBody(), "x");
    EXPECT_EQ(Parse("HTTP/1.1 200 OK\r\ntransfer-encoding: CHUNKED\r\n\r\n1\r\nx\r\n0\r\n\r\n").GetBody(), "x");
}

TEST(HttpResponse, KeepsTheSpellingOfNames) {
    EXPECT_EQ(Parse("HTTP/1.1 200 OK\r\nx-LOUD: A b\r\n\r\n").GetFields(), (Fields{{"x-LOUD", "A b"}}));
}

TEST(HttpResponse, TrimsValues) {
    EXPECT_EQ(Parse("HTTP/1.1 200 OK\r\nA: \t x y\t \r\nB:\r\nC:c\r\n\r\n").GetFields(),
              (Fields{{"A", "x y"}, {"B", ""}, {"C", "c"}}));
}

TEST(HttpResponse, JoinsRepeatedFieldsUnderTheFirstSpelling) {
    EXPECT_EQ(Parse("HTTP/1.1 401 x\r\nWWW-Authenticate: Digest a\r\nSet-Cookie: b=1\r\nwww-authenticate: Basic\r\n"
                    "Set-Cookie: c=2\r\n\r\n")
                  .GetFields(),
              (Fields{{"WWW-Authenticate", "Digest a, Basic"}, {"Set-Cookie", "b=1, c=2"}}));
}

TEST(HttpResponse, AcceptsARepeatedEqualContentLength) {
    EXPECT_EQ(Parse("HTTP/1.1 200 OK\r\nContent-Length: 1\r\nContent-Length: 1\r\n\r\nxy").GetBody(), "x");
}

TEST(HttpResponse, RefusesAnEmptyText) {
    EXPECT_EQ(ErrorOf(""), "the response is empty");
    EXPECT_THROW(Response::Parse(nullptr), ParseError);
}

TEST(HttpResponse, RefusesAnotherProtocol) {
    std::string const rule = "line 1: a response starts with \"HTTP/1.0 \" or \"HTTP/1.1 \"";
    for (auto const* const line : {"", "H", "HTTP/1.", "HTTP/1.1", "HTTP/2 200 OK", "HTTP/1.2 200 OK", "HTTP/1.1200 OK",
                                   " HTTP/1.1 200 OK", "<xml/>", "http/1.1 200 OK", "POST / HTTP/1.1"}) {
        EXPECT_EQ(ErrorOf(std::string(line) + "\r\n\r\n"), rule) << line;
    }
}

TEST(HttpResponse, RefusesAnInvalidStatus) {
    for (auto const* const status : {"", "20", "2000", "099", "600", "999", "20x", "-20", "+20", "200OK", " 200"}) {
        EXPECT_EQ(ErrorOf("HTTP/1.1 " + std::string(status) + "\r\n\r\n"),
                  "line 1: the status is not a number from 100 to 599")
            << status;
    }
}

TEST(HttpResponse, RefusesATruncatedHeader) {
    EXPECT_EQ(ErrorOf("HTTP/1.1 200 OK"), "line 1: the text ends within the line");
    EXPECT_EQ(ErrorOf("HTTP/1.1 200 OK\n\n"), "line 1: the text ends within the line");
    EXPECT_EQ(ErrorOf("HTTP/1.1 200 OK\r\nA: b\r\n"), "line 3: the text ends within the line");
}

TEST(HttpResponse, RefusesInvalidFields) {
    std::string const start = "HTTP/1.1 200 OK\r\nA: b\r\n";
    EXPECT_EQ(ErrorOf(start + "nonsense\r\n\r\n"), "line 3: the header field has no \":\"");
    EXPECT_EQ(ErrorOf(start + ": x\r\n\r\n"), "line 3: the name of the header field is not a token");
    EXPECT_EQ(ErrorOf(start + "A b: x\r\n\r\n"), "line 3: the name of the header field is not a token");
    EXPECT_EQ(ErrorOf(start + " folded: x\r\n\r\n"), "line 3: the name of the header field is not a token");
    EXPECT_EQ(ErrorOf(start + "A : x\r\n\r\n"), "line 3: the name of the header field is not a token");
    EXPECT_EQ(ErrorOf(start + "A: x\ny\r\n\r\n"), "line 3: the header field A holds a CR, LF or NUL");
    EXPECT_EQ(ErrorOf(start + "A: x\ry\r\n\r\n"), "line 3: the header field A holds a CR, LF or NUL");
    EXPECT_EQ(ErrorOf(start + "A: x" + std::string(1, '\0') + "\r\n\r\n"),
              "line 3: the header field A holds a CR, LF or NUL");
}

TEST(HttpResponse, BoundsTheLine) {
    std::string const start = "HTTP/1.1 200 OK\r\nA:";
    std::string const longest(Response::MaximumLineLength - 2, 'x');
    EXPECT_EQ(Parse(start + longest + "\r\n\r\n").GetFields().at("A"), longest);
    EXPECT_EQ(ErrorOf(start + longest + "x\r\n\r\n"), "line 2: longer than 8191 bytes");
    EXPECT_EQ(ErrorOf("HTTP/1.1 200 " + std::string(100000, 'x')), "line 1: longer than 8191 bytes");
}

TEST(HttpResponse, BoundsTheHeader) {
    std::string const start = "HTTP/1.1 200 OK\r\n";
    std::string const field = "A: " + std::string(1019, 'x') + "\r\n";
    std::string fields;
    while (start.size() + fields.size() + field.size() + 2 <= Response::MaximumHeaderLength) fields += field;
    EXPECT_EQ(ErrorOf(start + fields + "\r\n"), "accepted");
    EXPECT_EQ(ErrorOf(start + fields + field + "\r\n"), "line 65: the header is longer than 65536 bytes");
}

TEST(HttpResponse, BoundsTheNumberOfFields) {
    std::string fields = "HTTP/1.1 200 OK\r\n";
    for (std::size_t count = 0; count < Response::MaximumFields; ++count) fields += "A:\r\n";
    EXPECT_EQ(ErrorOf(fields + "\r\n"), "accepted");
    EXPECT_EQ(ErrorOf(fields + "A:\r\n\r\n"), "line 258: more than 256 header fields");
}

TEST(HttpResponse, BoundsTheHeaderNotTheBody) {
    std::string const body(2 * Response::MaximumHeaderLength, 'x');
    EXPECT_EQ(Parse("HTTP/1.1 200 OK\r\n\r\n" + body).GetBody(), body);
}

TEST(HttpResponse, RefusesAnInvalidContentLength) {
    for (auto const* const length : {"", "x", "-1", "+1", "1 ,", "1, 1", "0x1", "1.0", "99999999999999999999"}) {
        EXPECT_EQ(ErrorOf("HTTP/1.1 200 OK\r\nContent-Length: " + std::string(length) + "\r\n\r\nbody"),
                  "Content-Length: \"" + std::string(length) + "\" is not a number of bytes");
    }
}

TEST(HttpResponse, RefusesDifferentContentLengths) {
    EXPECT_EQ(ErrorOf("HTTP/1.1 200 OK\r\nContent-Length: 1\r\ncontent-length: 2\r\n\r\nxy"),
              "Content-Length: given twice with different numbers");
}

TEST(HttpResponse, RefusesATruncatedBody) {
    EXPECT_EQ(ErrorOf("HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\nfour"),
              "the text ends after 4 of 5 bytes of the body");
    EXPECT_EQ(ErrorOf("HTTP/1.1 200 OK\r\nContent-Length: 18446744073709551615\r\n\r\n"),
              "the text ends after 0 of 18446744073709551615 bytes of the body");
}

TEST(HttpResponse, RefusesOtherTransferCodings) {
    std::string const start = "HTTP/1.1 200 OK\r\nTransfer-Encoding: ";
    EXPECT_EQ(ErrorOf(start + "gzip, chunked\r\n\r\n"),
              "Transfer-Encoding: \"gzip, chunked\" is not understood, only chunked is");
    EXPECT_EQ(ErrorOf(start + "chunked\r\nTransfer-Encoding: chunked\r\n\r\n"),
              "Transfer-Encoding: \"chunked\" is not understood, only chunked is");
}

TEST(HttpResponse, RefusesBrokenChunks) {
    std::string const start = "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n";
    EXPECT_EQ(ErrorOf(start), "line 4: the text ends within the line");
    EXPECT_EQ(ErrorOf(start + "\r\n"), "line 4: the size of the chunk is not a hexadecimal number");
    EXPECT_EQ(ErrorOf(start + "x\r\n"), "line 4: the size of the chunk is not a hexadecimal number");
    EXPECT_EQ(ErrorOf(start + "-1\r\n"), "line 4: the size of the chunk is not a hexadecimal number");
    EXPECT_EQ(ErrorOf(start + "11111111111111111\r\n"), "line 4: the size of the chunk is not a hexadecimal number");
    EXPECT_EQ(ErrorOf(start + "2\r\nx"), "the text ends after 1 of 2 bytes of the body");
    EXPECT_EQ(ErrorOf(start + "1\r\nxy\r\n0\r\n\r\n"), "line 5: the chunk is longer than its size");
    EXPECT_EQ(ErrorOf(start + "1\r\nx\r\n0\r\n"), "line 7: the text ends within the line");
}

TEST(HttpResponse, SharesTheBytesOfItsTextUnlessItIsChunked) {
    auto const text = std::make_shared<container::Buffer>("HTTP/1.1 200 OK\r\nContent-Length: 4\r\n\r\nbody");
    EXPECT_EQ(Response::Parse(text).GetBuffer()->ToStringView().data(), text->ToStringView().data() + 38);
    auto const chunked = std::make_shared<container::Buffer>(
        "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n2\r\nbo\r\n2\r\ndy\r\n0\r\n\r\n");
    EXPECT_EQ(Response::Parse(chunked).GetBuffer()->ToStringView(), "body");
}

} // namespace
} // namespace zarn::protocol::network::http
