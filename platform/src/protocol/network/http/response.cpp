#include <zarn/container/buffer.h>
#include <zarn/protocol/network/http/response.h>
#include <zarn/protocol/network/http/token.h>
#include <zarn/text/character.h>

#include <boost/beast/core/string.hpp>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

namespace zarn::protocol::network::http {

// Boost.Beast's parser could not take this over: it refuses a status line without the space before the reason, and a
// length beside chunks; it accepts folded fields and bounds no single line.

namespace {

using boost::beast::iequals;
using container::Buffer;
using response::Status;

/// Header fields as a message has them, repeated ones one by one; views of the message.
using FieldList = std::vector<std::pair<std::string_view, std::string_view>>;

/// A number made of nothing but digits of the base; empty for anything else and when it is too large.
std::optional<std::size_t> ReadNumber(std::string_view digits, int base) {
    std::size_t number = 0;
    auto const* const end = digits.data() + digits.size();
    auto const result = std::from_chars(digits.data(), end, number, base);
    if (result.ec != std::errc() || result.ptr != end) return std::nullopt;
    return number;
}

std::string_view Trim(std::string_view text) { return zarn::text::Trim(text, " \t"); }

/// Reads the parts of a message from its front, within the bounds of Response. Errors name the line.
class Reader {
public:
    explicit Reader(std::string_view text) noexcept : text(text) {}

    /// The bound on the header counts from here.
    void StartHeader() noexcept { header = 0; }

    /// A line without its CR LF.
    std::string_view ReadLine() {
        constexpr std::string_view LineEnd = "\r\n";
        constexpr auto Longest = Response::MaximumLineLength;
        ++line;
        // Looking no further than the bound keeps a long body without line ends cheap.
        auto const end = text.substr(0, Longest + LineEnd.size()).find(LineEnd);
        if (end == std::string_view::npos) {
            if (text.size() < Longest + LineEnd.size()) Fail("the text ends within the line");
            Fail("longer than " + std::to_string(Longest) + " bytes");
        }
        header += end + LineEnd.size();
        if (header > Response::MaximumHeaderLength) {
            Fail("the header is longer than " + std::to_string(Response::MaximumHeaderLength) + " bytes");
        }
        auto const content = text.substr(0, end);
        text.remove_prefix(end + LineEnd.size());
        return content;
    }

    /// Source: RFC 9112, 4. The reason phrase is not looked at; it and the space before it may be missing.
    Status ReadStatusLine() {
        constexpr std::string_view Versions[] = {"HTTP/1.0 ", "HTTP/1.1 "};
        auto const content = ReadLine();
        auto const version = content.substr(0, Versions[0].size());
        if (version != Versions[0] && version != Versions[1]) {
            Fail("a response starts with \"HTTP/1.0 \" or \"HTTP/1.1 \"");
        }
        auto const rest = content.substr(version.size());
        auto const digits = rest.substr(0, rest.find(' '));
        auto const code = ReadNumber(digits, 10);
        if (!code || digits.size() != 3 || *code < 100 || *code > 599) {
            Fail("the status is not a number from 100 to 599");
        }
        return Status{static_cast<std::uint16_t>(*code)};
    }

    /// Field lines up to and with the blank line that ends them. Source: RFC 9112, 5.
    FieldList ReadFields() {
        constexpr std::string_view Forbidden("\r\n\0", 3);
        FieldList fields;
        for (auto content = ReadLine(); !content.empty(); content = ReadLine()) {
            auto const colon = content.find(':');
            if (colon == std::string_view::npos) Fail("the header field has no \":\"");
            auto const name = content.substr(0, colon);
            auto const value = Trim(content.substr(colon + 1));
            if (!IsToken(name)) Fail("the name of the header field is not a token");
            if (value.find_first_of(Forbidden) != std::string_view::npos) {
                Fail("the header field " + std::string(name) + " holds a CR, LF or NUL");
            }
            if (fields.size() == Response::MaximumFields) {
                Fail("more than " + std::to_string(Response::MaximumFields) + " header fields");
            }
            fields.emplace_back(name, value);
        }
        return fields;
    }

    /// The body that follows a header, decoded. Source: RFC 9112, 6.3.
    /// whole  the buffer of the message
    std::shared_ptr<Buffer> ReadBody(FieldList const& fields, std::shared_ptr<Buffer const> whole) {
        if (IsChunked(fields)) return std::make_shared<Buffer>(ReadChunks());
        auto const length = ReadContentLength(fields);
        return std::make_shared<Buffer>(std::move(whole), length ? ReadBytes(*length) : text);
    }

private:
    [[noreturn]] void Fail(std::string const& reason) const {
        throw ParseError("line " + std::to_string(line) + ": " + reason);
    }

    /// Exactly `size` bytes.
    std::string_view ReadBytes(std::size_t size) {
        if (size > text.size()) {
            throw ParseError("the text ends after " + std::to_string(text.size()) + " of " + std::to_string(size) +
                             " bytes of the body");
        }
        auto const bytes = text.substr(0, size);
        text.remove_prefix(size);
        return bytes;
    }

    /// The value of Content-Length; empty without one. The same length may be given several times (RFC 9110, 8.6).
    static std::optional<std::size_t> ReadContentLength(FieldList const& fields) {
        std::optional<std::size_t> length;
        for (auto const& [name, value] : fields) {
            if (!iequals(name, "Content-Length")) continue;
            auto const number = ReadNumber(value, 10);
            if (!number) throw ParseError("Content-Length: \"" + std::string(value) + "\" is not a number of bytes");
            if (length && *length != *number) throw ParseError("Content-Length: given twice with different numbers");
            length = number;
        }
        return length;
    }

    static bool IsChunked(FieldList const& fields) {
        bool chunked = false;
        for (auto const& [name, value] : fields) {
            if (!iequals(name, "Transfer-Encoding")) continue;
            if (chunked || !iequals(value, "chunked")) {
                throw ParseError("Transfer-Encoding: \"" + std::string(value) +
                                 "\" is not understood, only chunked is");
            }
            chunked = true;
        }
        return chunked;
    }

    /// Source: RFC 9112, 7.1. Chunk extensions and trailer fields are read and dropped.
    std::string ReadChunks() {
        std::string body;
        for (;;) {
            StartHeader();
            auto const content = ReadLine();
            auto const size = ReadNumber(Trim(content.substr(0, content.find(';'))), 16);
            if (!size) Fail("the size of the chunk is not a hexadecimal number");
            if (*size == 0) break;
            body += ReadBytes(*size);
            if (!ReadLine().empty()) Fail("the chunk is longer than its size");
        }
        ReadFields();
        return body;
    }

    std::string_view text;  ///< not read yet
    std::size_t header = 0; ///< bytes of the header so far
    std::size_t line = 0;
};

bool HasBody(Status status) { return status != Status::NoContent && status != Status::NotModified; }

std::map<std::string, std::string> Join(FieldList const& list) {
    std::map<std::string, std::string> fields;
    for (auto const& [name, value] : list) {
        auto const same =
            std::ranges::find_if(fields, [&name = name](auto const& field) { return iequals(field.first, name); });
        if (same == fields.end())
            fields.emplace(name, value);
        else
            same->second.append(", ").append(value);
    }
    return fields;
}

} // namespace

Response::Response(Status status, std::map<std::string, std::string> fields, std::shared_ptr<Buffer> body)
    : status(status), fields(std::move(fields)), body(std::move(body)) {}

Response::Response(Status status, std::map<std::string, std::string> fields, std::string body)
    : Response(status, std::move(fields), std::make_shared<Buffer>(std::move(body))) {}

std::string_view Response::GetBody() const noexcept { return body->ToStringView(); }

Response Response::Parse(std::shared_ptr<Buffer> const& buffer) {
    if (buffer == nullptr || buffer->GetSize() == 0) throw ParseError("the response is empty");
    Reader reader(buffer->ToStringView());
    for (;;) {
        reader.StartHeader();
        auto const status = reader.ReadStatusLine();
        auto const list = reader.ReadFields();
        if (status < Status::Ok) continue; // an interim response
        if (!HasBody(status)) return {status, Join(list), std::string()};
        return {status, Join(list), reader.ReadBody(list, buffer)};
    }
}

} // namespace zarn::protocol::network::http
