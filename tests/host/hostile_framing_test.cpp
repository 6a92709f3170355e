// Bodies with a wrong or ambiguous length.
#include "host/hostile_fixture.h"

#include <gmock/gmock.h>

#include <string>
#include <string_view>
#include <vector>

namespace zarn::test {
namespace {

using testing::HasSubstr;

std::string const Head = "POST /onvif/device_service HTTP/1.1\r\nHost: h\r\nContent-Type: application/soap+xml\r\n";

/// A body that the device service answers with 200.
std::string GetBody() {
    auto const request = MakeSoapRequest("GetSystemDateAndTime");
    return request.substr(request.find("\r\n\r\n") + 4);
}

std::string ToHex(std::size_t number) {
    std::string digits;
    for (; number > 0; number /= 16) digits.insert(digits.begin(), "0123456789abcdef"[number % 16]);
    return digits;
}

/// A request with these framing fields, followed by these bytes.
std::string Framed(std::string_view fields, std::string_view bytes) {
    return std::string(Head).append(fields).append("\r\n").append(bytes);
}

std::string WithLength(std::string const& value) { return Framed("Content-Length: " + value + "\r\n", "hello"); }

std::string WithCoding(std::string const& value) {
    return Framed("Transfer-Encoding: " + value + "\r\n", "5\r\nhello\r\n0\r\n\r\n");
}

/// A chunked request; `bytes` is everything after its header.
std::string Chunked(std::string_view bytes) { return Framed("Transfer-Encoding: chunked\r\n", bytes); }

class HostileFraming : public HostileTest {
protected:
    using HostileTest::HostileTest;

    std::string const body = GetBody();
    std::string const size = ToHex(body.size());
};

TEST_F(HostileFraming, WithWrongLengthsIsAnswered) {
    auto const length = std::to_string(body.size());
    auto const field = "Content-Length: " + length + "\r\n";
    ExpectAnswers({
        {"as it should be", Framed(field, body), 200},
        {"none", Framed("", "hello"), 411},
        {"empty", WithLength(""), 400},
        {"a sign", WithLength("+5"), 400},
        {"negative", WithLength("-1"), 400},
        {"two words", WithLength("5 5"), 400},
        {"a list", Framed("Content-Length: " + length + ", " + length + "\r\n", body), 400},
        {"a list of two lengths", WithLength("5,6"), 400},
        {"hexadecimal", WithLength("0x5"), 400},
        {"with an exponent", WithLength("1e3"), 400},
        {"in digits of another script", WithLength("\xd9\xa5"), 400},
        {"with a NUL", WithLength(std::string("5\0", 2)), 400},
        {"more than 64 bits", WithLength("18446744073709551616"), 400},
        {"64 bits", WithLength("18446744073709551615"), 413},
        {"63 bits and one", WithLength("9223372036854775808"), 413},
        {"one byte too long", WithLength("1048577"), 413},
        {"said twice", Framed(field + field, body), 400},
        {"said twice, differently", Framed("Content-Length: 5\r\nContent-Length: 6\r\n", "hello"), 400},
        {"said twice, in other letters", Framed("Content-Length: 5\r\ncontent-length: 0\r\n", "hello"), 400},
        {"and chunked", Framed("Content-Length: 5\r\nTransfer-Encoding: chunked\r\n", "0\r\n\r\n"), 400},
        {"chunked, and a length", Framed("Transfer-Encoding: chunked\r\nContent-Length: 5\r\n", "0\r\n\r\n"), 400},
        {"with an empty coding", Framed("Transfer-Encoding:\r\n" + field, body), 400},
        {"with leading zeros", Framed("Content-Length: 0000" + length + "\r\n", body), 200},
        {"too short", Framed("Content-Length: 5\r\n", body), 400},
        {"of a GET", "GET /api/health HTTP/1.1\r\nHost: h\r\nContent-Length: 5\r\n\r\nhello", 200},
        {"far too long, of a GET", "GET /api/health HTTP/1.1\r\nHost: h\r\nContent-Length: 9999999999\r\n\r\n", 413},
        {"megabytes too much", Framed("Content-Length: 4194304\r\n", Repeat("x", 4 * Megabyte)), 413},
    });
}

TEST_F(HostileFraming, WithOddTransferCodingsIsAnswered) {
    ExpectAnswers({
        {"identity", WithCoding("identity"), 400},
        {"identity, chunked", WithCoding("identity, chunked"), 400},
        {"chunked, chunked", WithCoding("chunked, chunked"), 400},
        {"gzip, chunked", WithCoding("gzip, chunked"), 400},
        {"chunked, gzip", WithCoding("chunked, gzip"), 400},
        {"chunked in quotes", WithCoding("\"chunked\""), 400},
        {"chunked with a parameter", WithCoding("chunked;a=b"), 400},
        {"chunked with a comma", WithCoding("chunked,"), 400},
        {"chunked behind a comma", WithCoding(",chunked"), 400},
        {"almost chunked", WithCoding("xchunked"), 400},
        {"a control character before", WithCoding("\vchunked"), 400},
        {"in two fields", WithCoding("chunked\r\nTransfer-Encoding: chunked"), 400},
        {"in two fields, differently", WithCoding("chunked\r\nTransfer-Encoding: identity"), 400},
        {"none, in two fields", WithCoding("\r\nTransfer-Encoding: chunked"), 400},
        {"a blank before the colon", Framed("Transfer-Encoding : chunked\r\n", "0\r\n\r\n"), 400},
        {"a blank before the name", Framed("A: b\r\n Transfer-Encoding: chunked\r\n", "0\r\n\r\n"), 411},
        {"in HTTP/1.0", "POST /onvif/a HTTP/1.0\r\nHost: h\r\nTransfer-Encoding: chunked\r\n\r\n0\r\n\r\n", 400},
        {"chunked in capitals", Framed("Transfer-Encoding: CHUNKED\r\n", size + "\r\n" + body + "\r\n0\r\n\r\n"), 200},
    });
}

TEST_F(HostileFraming, WithOddChunksIsAnswered) {
    auto const end = "\r\n" + body + "\r\n0\r\n\r\n";
    ExpectAnswers({
        {"as they should be", Chunked(size + end), 200},
        {"leading zeros", Chunked("0000" + size + end), 200},
        {"an extension", Chunked(size + ";a=b;c=\"d\"" + end), 200},
        {"an extension of megabytes", Chunked(size + ";a=" + Repeat("x", 3 * Megabyte) + end), 431},
        {"a size of megabytes", Chunked(Repeat("0", 3 * Megabyte)), 431},
        {"a size of more than 64 bits", Chunked("10000000000000005\r\nhello\r\n0\r\n\r\n"), 400},
        {"a size of 64 bits", Chunked("ffffffffffffffff\r\nhello\r\n0\r\n\r\n"), 413},
        {"a size that is too large", Chunked("100001\r\n"), 413},
        {"a negative size", Chunked("-5\r\nhello\r\n0\r\n\r\n"), 400},
        {"a signed size", Chunked("+5\r\nhello\r\n0\r\n\r\n"), 400},
        {"a size with 0x", Chunked("0x5\r\nhello\r\n0\r\n\r\n"), 400},
        {"a size with a blank before", Chunked(" 5\r\nhello\r\n0\r\n\r\n"), 400},
        {"a size with a word behind", Chunked("5 5\r\nhello\r\n0\r\n\r\n"), 400},
        {"a size with a NUL", Chunked(std::string("5\0", 2) + "\r\nhello\r\n0\r\n\r\n"), 400},
        {"no size", Chunked("\r\n\r\n"), 400},
        {"a line feed behind the size", Chunked("5\nhello\r\n0\r\n\r\n"), 400},
        {"more than the size", Chunked("5\r\nhello world\r\n0\r\n\r\n"), 400},
        {"more chunks than a body may have bytes", Chunked(Repeat("10\r\nsixteen letters.\r\n", Megabyte / 16 + 1)),
         413},
        {"trailers", Chunked(size + "\r\n" + body + "\r\n0\r\nA: b\r\n\r\n"), 200},
        {"a host in the trailers", Chunked(size + "\r\n" + body + "\r\n0\r\nHost: a/b\r\n\r\n"), 200},
        {"a length in the trailers", Chunked(size + "\r\n" + body + "\r\n0\r\nContent-Length: 5\r\n\r\n"), 400},
        {"no field in the trailers", Chunked(size + "\r\n" + body + "\r\n0\r\nA\r\n\r\n"), 400},
        {"endless trailers", Chunked(size + "\r\n" + body + "\r\n0\r\n" + Repeat("A: b\r\n", Megabyte)), 431},
    });
}

/// A host that waits at most one second for the rest of a request.
class UnfinishedFraming : public HostileFraming {
protected:
    UnfinishedFraming() : HostileFraming({"settings.limits.header_seconds=1", "settings.limits.idle_seconds=1"}) {}
};

TEST_F(UnfinishedFraming, TimesOut) {
    ExpectAnswersSideBySide({
        {"half a request line", "GET /api/he", 408},
        {"half a header", "GET /api/health HTTP/1.1\r\nHost: h\r\n", 408},
        {"half an empty line", "GET /api/health HTTP/1.1\r\nHost: h\r\n\r", 408},
        {"no body", Framed("Content-Length: 5\r\n", ""), 408},
        {"half a body", Framed("Content-Length: 5\r\n", "he"), 408},
        {"half of a body of a megabyte", Framed("Content-Length: 1048576\r\n", Repeat("x", Megabyte / 2)), 408},
        {"no body where it was asked for", Framed("Expect: 100-continue\r\nContent-Length: 5\r\n", ""), 408},
        {"no body where an empty expectation was", Framed("Expect:\r\nContent-Length: 5\r\n", ""), 408},
        {"half a chunk", Chunked("5\r\nhe"), 408},
        {"half a size", Chunked("5"), 408},
        {"a chunk that is shorter than its size", Chunked("9\r\nhello\r\n0\r\n\r\n"), 408},
        {"no last chunk", Chunked("5\r\nhello\r\n"), 408},
        {"no end of the trailers", Chunked("0\r\nA: b\r\n"), 408},
        {"chunks with line feeds only", Chunked("5\nhello\n0\n\n"), 408},
        {"nothing", "", NoAnswer},
        {"half an empty line and nothing", "\r", NoAnswer},
    });
}

TEST_F(HostileFraming, CannotSmuggleARequestInABody) {
    std::string const smuggled = "GET /smuggled HTTP/1.1\r\nHost: h\r\n\r\n";
    for (auto const& bytes :
         {Framed("Content-Length: 5\r\nTransfer-Encoding: chunked\r\n", "0\r\n\r\n" + smuggled),
          Framed("Transfer-Encoding: chunked\r\nContent-Length: 5\r\n", "0\r\n\r\n" + smuggled),
          Framed("Content-Length: 0\r\nContent-Length: 38\r\n", smuggled), Framed("Transfer-Encoding: x\r\n", smuggled),
          Framed("Transfer-Encoding: identity\r\nContent-Length: 0\r\n", smuggled), Framed("", smuggled),
          Chunked("5\r\nhello" + smuggled), Chunked("zz\r\n" + smuggled), WithLength("0x0") + smuggled}) {
        auto connection = Connect();
        connection.Send(bytes);
        EXPECT_GE(ReadStatus(connection), 400U) << bytes;
        EXPECT_EQ(ReadStatus(connection), NoAnswer) << bytes;
    }
}

TEST_F(HostileFraming, LeavesBytesAfterABodyToTheNextRequest) {
    auto connection = Connect();
    connection.Send(MakePost(GetBody()) + "garbage\r\n\r\n");
    EXPECT_EQ(connection.Read().status, 200U);
    EXPECT_EQ(ReadStatus(connection), 400U);
    EXPECT_EQ(ReadStatus(connection), NoAnswer);
}

TEST_F(HostileFraming, OfAThousandPipelinedRequestsKeepsTheirOrder) {
    ExpectNoGrowth([this] {
        auto connection = Connect();
        std::string requests;
        for (int i = 0; i < 1000; ++i) {
            requests += i % 2 == 0 ? MakePost(body) : "GET /api/nothing HTTP/1.1\r\nHost: h\r\n\r\n";
        }
        connection.Send(requests);
        for (int i = 0; i < 1000; ++i) ASSERT_EQ(connection.Read().status, i % 2 == 0 ? 200U : 404U) << i;
        ExpectServed();
    });
}

} // namespace
} // namespace zarn::test
