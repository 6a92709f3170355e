#include "protocol/network/http/body.h"

#include "protocol/network/http/token.h"

#include <zarn/protocol/network/http/parse_error.h>

#include <charconv>
#include <cstddef>
#include <optional>
#include <string_view>

namespace zarn::protocol::network::http {

namespace {

/// A number made of nothing but digits of the base; empty when it is none or too large.
std::optional<std::size_t> ReadNumber(std::string_view digits, int base) {
    std::size_t number = 0;
    auto const* const end = digits.data() + digits.size();
    auto const result = std::from_chars(digits.data(), end, number, base);
    if (result.ec != std::errc() || result.ptr != end) return std::nullopt;
    return number;
}

/// The value of Content-Length; empty without one. The same length may be given several times (RFC 9110, 8.6).
std::optional<std::size_t> ReadContentLength(FieldList const& fields) {
    std::optional<std::size_t> length;
    for (auto const& [name, value] : fields) {
        if (!EqualsIgnoringCase(name, "Content-Length")) continue;
        auto const number = ReadNumber(value, 10);
        if (!number) throw ParseError("Content-Length: \"" + std::string(value) + "\" is not a number of bytes");
        if (length && *length != *number) throw ParseError("Content-Length: given twice with different numbers");
        length = number;
    }
    return length;
}

bool IsChunked(FieldList const& fields) {
    bool chunked = false;
    for (auto const& [name, value] : fields) {
        if (!EqualsIgnoringCase(name, "Transfer-Encoding")) continue;
        if (chunked || !EqualsIgnoringCase(value, "chunked")) {
            throw ParseError("Transfer-Encoding: \"" + std::string(value) + "\" is not understood, only chunked is");
        }
        chunked = true;
    }
    return chunked;
}

/// Source: RFC 9112, 7.1. Chunk extensions and trailer fields are read and dropped.
std::string ReadChunks(MessageReader& reader) {
    std::string body;
    for (;;) {
        reader.StartHeader();
        auto const line = reader.ReadLine();
        auto const size = ReadNumber(Trim(line.substr(0, line.find(';'))), 16);
        if (!size) throw ParseError(reader.Where() + "the size of the chunk is not a hexadecimal number");
        if (*size == 0) break;
        body += reader.ReadBytes(*size);
        if (!reader.ReadLine().empty()) throw ParseError(reader.Where() + "the chunk is longer than its size");
    }
    reader.ReadFields();
    return body;
}

} // namespace

std::string ReadBody(MessageReader& reader, FieldList const& fields) {
    if (IsChunked(fields)) return ReadChunks(reader);
    if (auto const length = ReadContentLength(fields)) return std::string(reader.ReadBytes(*length));
    return std::string(reader.ReadRest());
}

} // namespace zarn::protocol::network::http
