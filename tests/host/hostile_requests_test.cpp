// Malformed request lines and headers, sent to the real process.
#include "host/hostile_fixture.h"

#include <string>
#include <string_view>
#include <vector>

namespace zarn::test {
namespace {

/// A request without a body.
std::string MakeGet(std::string_view target, std::string_view fields = {}, std::string_view method = "GET") {
    std::string request(method);
    return request.append(" ").append(target).append(" HTTP/1.1\r\nHost: h\r\n").append(fields).append("\r\n");
}

/// A request for the status page with additional fields.
std::string WithFields(std::string_view fields) { return MakeGet("/api/health", fields); }

/// Replaces every "0" in a text by a NUL.
std::string WithNul(std::string text) {
    for (char& each : text) {
        if (each == '0') each = '\0';
    }
    return text;
}

class HostileRequests : public HostileTest {};

TEST_F(HostileRequests, WithOddLinesAreAnswered) {
    std::string const rest = "\r\nHost: h\r\n\r\n";
    ExpectAnswers({
        {"bare line feeds", "GET /api/health HTTP/1.1\nHost: h\n\n", 400},
        {"bare carriage returns", "GET /api/health HTTP/1.1\rHost: h\r\r", 400},
        {"a line feed behind the request line", "GET /api/health HTTP/1.1\nHost: h\r\n\r\n", 400},
        {"a line feed behind a field", "GET /api/health HTTP/1.1\r\nHost: h\nA: b\r\n\r\n", 400},
        {"NUL in the request line", WithNul("GET /api/0health HTTP/1.1") + rest, 400},
        {"two blanks", "GET  /api/health HTTP/1.1" + rest, 400},
        {"tabs", "GET\t/api/health\tHTTP/1.1" + rest, 400},
        {"a blank at the end", "GET /api/health HTTP/1.1 " + rest, 400},
        {"a blank at the beginning", " GET /api/health HTTP/1.1" + rest, 400},
        {"no target", "GET HTTP/1.1" + rest, 400},
        {"no version (HTTP/0.9)", "GET /api/health\r\n\r\n", 400},
        {"a version in lower case", "GET /api/health http/1.1" + rest, 400},
        {"a version with more behind it", "GET /api/health HTTP/1.1x" + rest, 400},
        {"a version that is a word", "GET /api/health HTTP/one" + rest, 400},
        {"another version", "GET /api/health HTTP/1.2" + rest, 505},
        {"a version to come", "GET /api/health HTTP/9.9" + rest, 505},
        {"the beginning of HTTP/2", "PRI * HTTP/2.0\r\n\r\nSM\r\n\r\n", 505},
        {"HTTP/1.0", "GET /api/health HTTP/1.0\r\n\r\n", 200},
        {"HTTP/1.0 that is to be kept", "GET /api/health HTTP/1.0\r\nConnection: keep-alive\r\n\r\n", 200},
        {"two empty lines first", "\r\n\r\n" + WithFields(""), 200},
        {"many empty lines", Repeat("\r\n", 50'000), 400},
        {"blanks", Repeat(" ", 100 * Kilobyte), 400},
        {"NULs", std::string(100 * Kilobyte, '\0'), 400},
        {"one long word", Repeat("G", Megabyte), 431},
        {"the beginning of TLS", std::string("\x16\x03\x01\x02\x00\x01\x00\x01\xfc\x03\x03", 11) + Repeat("\x7f", 512),
         400},
        {"the beginning of SSL 2", std::string("\x80\x2e\x01\x00\x02", 5) + Repeat("\x01", 44), 400},
        {"a SSH client", "SSH-2.0-client\r\n", 400},
        {"a RTSP request", "OPTIONS rtsp://h/channels/1 RTSP/1.0\r\nCSeq: 1\r\n\r\n", 400},
        {"the header of a proxy", "PROXY TCP4 192.0.2.1 192.0.2.2 1 2\r\n" + WithFields(""), 400},
    });
}

TEST_F(HostileRequests, WithOddFieldsAreAnswered) {
    std::string const get = "GET /api/health HTTP/1.1\r\n";
    ExpectAnswers({
        {"no host", get + "\r\n", 400},
        {"two hosts", get + "Host: h\r\nHost: h\r\n\r\n", 400},
        {"a host of two words", get + "Host: a b\r\n\r\n", 400},
        {"a host with a path", get + "Host: a/b\r\n\r\n", 400},
        {"a host with a user", get + "Host: a@b\r\n\r\n", 400},
        {"a host of markup", get + "Host: <a>\r\n\r\n", 400},
        {"a host of bytes", get + "Host: \xff\xfe\r\n\r\n", 400},
        {"a long host", get + "Host: " + std::string(1000, 'h') + "\r\n\r\n", 414},
        {"a blank before a colon", WithFields("A : b\r\n"), 400},
        {"a blank before the first field", get + " Host: h\r\n\r\n", 400},
        {"no colon", WithFields("Ab\r\n"), 400},
        {"no name", WithFields(": b\r\n"), 400},
        {"brackets in a name", WithFields("A(b): c\r\n"), 400},
        {"bytes in a name", WithFields("A\xe4: c\r\n"), 400},
        {"NUL in a name", WithFields(WithNul("A0b: c\r\n")), 400},
        {"NUL in a value", WithFields(WithNul("A: b0c\r\n")), 400},
        {"a control character in a value", WithFields("A: b\x01\r\n"), 400},
        {"bytes in a value", WithFields("A: \xff\xfe\r\n"), 200},
        {"a folded value", WithFields("A: b\r\n c\r\n"), 200},
        {"a value of many folds", WithFields("A: b\r\n" + Repeat(" c\r\n", 50'000)), 431},
        {"a name of 9,000 bytes", WithFields(Repeat("a", 9000) + ": b\r\n"), 431},
        {"a value of 9,000 bytes", WithFields("A: " + Repeat("b", 9000) + "\r\n"), 431},
        {"a value without an end", WithFields("A: " + Repeat("b", 4 * Megabyte)), 431},
        {"101 fields", WithFields(Repeat("A: b\r\n", 100)), 431},
        {"a flood of fields", WithFields(Repeat("A:b\r\n", 200'000)), 431},
        {"thousands of connection options", WithFields("Connection: " + Repeat("a,", 4000) + "\r\n"), 200},
        {"all fields named as those of the connection",
         MakePost("", "Connection: Host, Content-Length, Authorization\r\n"), 401},
        {"thousands of ranges", WithFields("Range: bytes=" + Repeat("0-,", 2500) + "\r\n"), 200},
        {"an upgrade to HTTP/2",
         WithFields("Connection: Upgrade, HTTP2-Settings\r\nUpgrade: h2c\r\nHTTP2-Settings: AA\r\n"), 200},
        {"an upgrade to web sockets",
         WithFields("Connection: Upgrade\r\nUpgrade: websocket\r\nSec-WebSocket-Key: x\r\n"), 200},
        {"cookies", WithFields("Cookie: " + Repeat("a=b; ", 1600) + "\r\n"), 200},
        {"a login of many parameters", WithFields("Authorization: Digest " + Repeat("a=\"b\",", 1300) + "\r\n"), 200},
    });
}

TEST_F(HostileRequests, WithOddTargetsAndMethodsAreAnswered) {
    ExpectAnswers({
        {"a path that leads elsewhere", MakeGet("/onvif/../api/health"), 405},
        {"a file of the system", MakeGet("/snapshot/../../etc/passwd"), 404},
        {"a file, many levels up", MakeGet("/" + Repeat("../", 100) + "etc/passwd"), 404},
        {"an encoded way up as a channel", MakeGet("/snapshot/%2e%2e/latest.jpeg"), 401},
        {"a way up as a channel", MakeGet("/snapshot/../latest.jpeg"), 401},
        {"a way up that is encoded twice", MakeGet("/snapshot/%252e%252e%252flatest.jpeg"), 404},
        {"an encoded path", MakeGet("/%61pi/health"), 404},
        {"an encoded NUL", MakeGet("/api/health%00"), 404},
        {"an encoded line end", MakeGet("/api/health%0d%0aSet-Cookie:%20a=b"), 404},
        {"a backslash", MakeGet("/api\\health"), 404},
        {"two slashes", MakeGet("//api/health"), 404},
        {"a fragment", MakeGet("/api/health#a"), 404},
        {"bytes in a path", MakeGet("/api/h\xe4lth"), 404},
        {"a query", MakeGet("/api/health?../../etc/passwd"), 200},
        {"a long target", MakeGet("/" + Repeat("a", 1000)), 414},
        {"a target without an end", "GET /" + Repeat("a", Megabyte), 431},
        {"an address", MakeGet("http://other/api/health"), 200},
        {"an address of another scheme", MakeGet("ftp://h/api/health"), 400},
        {"an address of a file", MakeGet("file:///etc/passwd"), 400},
        {"an address without a host", MakeGet("http:///api/health"), 400},
        {"host and port", MakeGet("h:80"), 400},
        {"everything", MakeGet("*", {}, "OPTIONS"), 400},
        {"a tunnel", MakeGet("h:80", {}, "CONNECT"), 400},
        {"a tunnel to a path", MakeGet("/api/health", {}, "CONNECT"), 405},
        {"TRACE", MakeGet("/api/health", "Cookie: secret\r\n", "TRACE"), 405},
        {"DELETE", MakeGet("/api/health", {}, "DELETE"), 405},
        {"PATCH", MakeGet("/onvif/device_service", "Content-Length: 0\r\n", "PATCH"), 405},
        {"PUT without a length", MakeGet("/onvif/device_service", {}, "PUT"), 411},
        {"GET at the module", MakeGet("/onvif/device_service"), 405},
        {"HEAD at the module", MakeGet("/onvif/device_service", {}, "HEAD"), 405},
        {"a method in lower case", MakeGet("/api/health", {}, "get"), 405},
        {"an unknown method", MakeGet("/api/health", {}, "BREW"), 405},
        {"a method of 10 KB", MakeGet("/api/health", {}, Repeat("G", 10 * Kilobyte)), 405},
        {"a method with a NUL", MakeGet("/api/health", {}, WithNul("G0T")), 400},
        {"another method in a field", MakeGet("/api/health", "X-HTTP-Method-Override: DELETE\r\n"), 200},
    });
}

TEST_F(HostileRequests, WithUnsupportedContentAreAnswered) {
    auto const coded = [](std::string const& codings) { return MakePost("x", codings); };
    auto const type = [](std::string const& name) { return MakePost("x", "Content-Type: " + name + "\r\n"); };
    ExpectAnswers({
        {"gzip", coded("Content-Encoding: gzip\r\n"), 415},
        {"deflate", coded("Content-Encoding: deflate\r\n"), 415},
        {"br", coded("Content-Encoding: br\r\n"), 415},
        {"gzip in a list", coded("Content-Encoding: identity, gzip\r\n"), 415},
        {"gzip in a second field", coded("Content-Encoding: identity\r\nContent-Encoding: gzip\r\n"), 415},
        {"gzip behind a fold", coded("Content-Encoding:\r\n gzip\r\n"), 415},
        {"multipart", type("multipart/related; boundary=x; type=\"application/soap+xml\""), 415},
        {"a form of several parts", type("multipart/form-data; boundary=x"), 415},
        {"DIME", type("application/dime"), 415},
        {"another expectation", MakePost("x", "Expect: a-miracle\r\n"), 417},
        {"two expectations", MakePost("x", "Expect: 100-continue\r\nExpect: a-miracle\r\n"), 417},
        {"a list of expectations", MakePost("x", "Expect: 100-continue, a-miracle\r\n"), 417},
    });
}

} // namespace
} // namespace zarn::test
