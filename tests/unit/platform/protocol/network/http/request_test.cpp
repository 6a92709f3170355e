#include <zarn/protocol/network/http/request.h>

#include <gmock/gmock.h>

#include <sstream>
#include <string>

namespace zarn::protocol::network::http {
namespace {

using Fields = std::map<std::string, std::string>;

std::string Write(std::string const& target, std::string const& body = {}, Fields const& fields = {},
                  Method method = Method::Post) {
    std::ostringstream stream;
    stream << Request(method, target, body, fields);
    return std::move(stream).str();
}

TEST(HttpRequest, TellsItsFieldsAndItsBody) {
    Request const request(Method::Put, "/a", "body",
                          Fields{{"Host", "b"}, {"A", ""}, {"C: D", "1"}, {"E", "1:2\n: 3"}});
    using Field = std::pair<std::string_view, std::string_view>;
    EXPECT_THAT(request.GetFields(), testing::ElementsAre(Field("A", ""), Field("E", "1:2 : 3"), Field("Host", "b"),
                                                          Field("Content-Length", "4")));
    EXPECT_EQ(request.GetBody(), "body");
}

TEST(HttpRequest, CanBeMadeOfTextsThatOthersOwn) {
    Request const request(Method::Post, std::string_view("/a"), std::string_view("body"),
                          Request::Fields{{"Host", "b"}});
    EXPECT_EQ(request.GetText(), "POST /a HTTP/1.1\r\nHost: b\r\nContent-Length: 4\r\n\r\nbody");
}

TEST(HttpRequest, IsWrittenAsOneMessage) {
    EXPECT_EQ(Write("/onvif/device_service?a=b", "<x/>", {{"Content-Type", "text/xml"}, {"Host", "camera:80"}}),
              "POST /onvif/device_service?a=b HTTP/1.1\r\n"
              "Content-Type: text/xml\r\n"
              "Host: camera:80\r\n"
              "Content-Length: 4\r\n"
              "\r\n"
              "<x/>");
}

TEST(HttpRequest, HasAContentLengthEvenWithoutABody) {
    EXPECT_EQ(Write("/", {}, {}, Method::Get), "GET / HTTP/1.1\r\nContent-Length: 0\r\n\r\n");
}

TEST(HttpRequest, ReplacesTheFramingThatTheClientUsed) {
    EXPECT_EQ(Write("/", "12", {{"content-LENGTH", "7"}, {"Transfer-Encoding", "chunked"}}),
              "POST / HTTP/1.1\r\nContent-Length: 2\r\n\r\n12");
}

TEST(HttpRequest, KeepsBinaryBodies) {
    std::string const body("\0\r\n\xff", 4);
    EXPECT_EQ(Write("/", body), "POST / HTTP/1.1\r\nContent-Length: 4\r\n\r\n" + body);
}

TEST(HttpRequest, EncodesLineBreaksInATarget) {
    EXPECT_EQ(Write("/a HTTP/1.1\r\nX: y\r\n\r\n"),
              "POST /a%20HTTP/1.1%0D%0AX:%20y%0D%0A%0D%0A HTTP/1.1\r\nContent-Length: 0\r\n\r\n");
}

TEST(HttpRequest, EncodesOtherInvalidBytesInATarget) {
    EXPECT_EQ(Write(std::string("/\0\t\x7f\xc3\xbc", 6)),
              "POST /%00%09%7F%C3%BC HTTP/1.1\r\nContent-Length: 0\r\n\r\n");
}

TEST(HttpRequest, KeepsATargetThatIsEncodedAlready) {
    EXPECT_EQ(Write("/%41%0d%0a?q=%20"), "POST /%41%0d%0a?q=%20 HTTP/1.1\r\nContent-Length: 0\r\n\r\n");
}

TEST(HttpRequest, WritesAnEmptyTargetAsTheRoot) {
    EXPECT_EQ(Write(""), "POST / HTTP/1.1\r\nContent-Length: 0\r\n\r\n");
}

TEST(HttpRequest, ReplacesLineBreaksInAValue) {
    EXPECT_EQ(Write("/", {}, {{"A", std::string("1\r\nB: 2\0", 8)}}),
              "POST / HTTP/1.1\r\nA: 1  B: 2 \r\nContent-Length: 0\r\n\r\n");
}

TEST(HttpRequest, OmitsFieldsWithAnInvalidName) {
    for (auto const* const name : {"", "A B", "A:", "A\r\nB", "A\tB", "A(", "\xc3\xbc", "A\x7f"}) {
        EXPECT_EQ(Write("/", {}, {{name, "1"}}), "POST / HTTP/1.1\r\nContent-Length: 0\r\n\r\n") << name;
    }
}

TEST(HttpRequest, KeepsEveryCharacterOfATokenInAName) {
    EXPECT_EQ(Write("/", {}, {{"!#$%&'*+-.^_`|~09azAZ", ""}}),
              "POST / HTTP/1.1\r\n!#$%&'*+-.^_`|~09azAZ: \r\nContent-Length: 0\r\n\r\n");
}

} // namespace
} // namespace zarn::protocol::network::http
