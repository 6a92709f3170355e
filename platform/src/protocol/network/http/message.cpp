#include "protocol/network/http/message.h"

#include "protocol/network/http/token.h"

#include <zarn/protocol/network/http/parse_error.h>

#include <utility>

namespace zarn::protocol::network::http {

MessageReader::MessageReader(std::string_view text, MessageBounds const& bounds) noexcept
    : text(text), bounds(bounds) {}

void MessageReader::StartHeader() noexcept { header = 0; }

std::string_view MessageReader::ReadLine() {
    constexpr std::string_view LineEnd = "\r\n";
    ++line;
    // Looking no further than the bound keeps a long body without line ends cheap.
    auto const end = text.substr(0, bounds.line + LineEnd.size()).find(LineEnd);
    if (end == std::string_view::npos) {
        if (text.size() < bounds.line + LineEnd.size()) throw ParseError(Where() + "the text ends within the line");
        throw ParseError(Where() + "longer than " + std::to_string(bounds.line) + " bytes");
    }
    header += end + LineEnd.size();
    if (header > bounds.header) {
        throw ParseError(Where() + "the header is longer than " + std::to_string(bounds.header) + " bytes");
    }
    auto const content = text.substr(0, end);
    text.remove_prefix(end + LineEnd.size());
    return content;
}

FieldList MessageReader::ReadFields() {
    constexpr std::string_view Forbidden("\r\n\0", 3);
    FieldList fields;
    for (auto content = ReadLine(); !content.empty(); content = ReadLine()) {
        auto const colon = content.find(':');
        if (colon == std::string_view::npos) throw ParseError(Where() + "the header field has no \":\"");
        auto const name = content.substr(0, colon);
        auto const value = Trim(content.substr(colon + 1));
        if (!IsToken(name)) throw ParseError(Where() + "the name of the header field is not a token");
        if (value.find_first_of(Forbidden) != std::string_view::npos) {
            throw ParseError(Where() + "the header field " + std::string(name) + " holds a CR, LF or NUL");
        }
        if (fields.size() == bounds.fields) {
            throw ParseError(Where() + "more than " + std::to_string(bounds.fields) + " header fields");
        }
        fields.emplace_back(name, value);
    }
    return fields;
}

std::string_view MessageReader::ReadBytes(std::size_t size) {
    if (size > text.size()) {
        throw ParseError("the text ends after " + std::to_string(text.size()) + " of " + std::to_string(size) +
                         " bytes of the body");
    }
    auto const bytes = text.substr(0, size);
    text.remove_prefix(size);
    return bytes;
}

std::string_view MessageReader::ReadRest() noexcept { return std::exchange(text, {}); }

std::string MessageReader::Where() const { return "line " + std::to_string(line) + ": "; }

} // namespace zarn::protocol::network::http
