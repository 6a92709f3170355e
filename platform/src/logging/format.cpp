#include <zarn/logging/format.h>
#include <zarn/text/character.h>

#include <boost/algorithm/hex.hpp>

#include <charconv>
#include <cstddef>
#include <iterator>
#include <optional>

namespace zarn::logging {

namespace {

struct Placeholder {
    std::size_t index;
    std::size_t length; ///< of the placeholder in the format, both "%" included
};

/// The placeholder at the start of `text`; empty when there is none.
std::optional<Placeholder> ReadPlaceholder(std::string_view text) {
    auto const end = text.find('%', 1);
    if (end == std::string_view::npos) return std::nullopt;
    std::size_t index = 0;
    auto const* const last = text.data() + end;
    auto const result = std::from_chars(text.data() + 1, last, index);
    if (result.ec != std::errc() || result.ptr != last) return std::nullopt;
    return Placeholder{index, end + 1};
}

/// Escapes one character that a log line must not contain.
std::string Escape(std::string_view character) {
    if (character == "\n") return "\\n";
    if (character == "\r") return "\\r";
    if (character == "\t") return "\\t";
    std::string escaped;
    for (char const byte : character) {
        escaped += "\\x";
        boost::algorithm::hex_lower(&byte, &byte + 1, std::back_inserter(escaped));
    }
    return escaped;
}

} // namespace

std::string Format(std::string_view format, std::span<std::string const> arguments) {
    std::string text;
    text.reserve(format.size());
    while (!format.empty()) {
        auto const plain = format.substr(0, format.find('%'));
        text += plain;
        format.remove_prefix(plain.size());
        if (format.empty()) break;
        auto const placeholder = ReadPlaceholder(format);
        bool const known = placeholder && placeholder->index < arguments.size();
        if (known)
            text += arguments[placeholder->index];
        else
            text += '%';
        format.remove_prefix(known ? placeholder->length : 1);
    }
    return text;
}

std::string ToLine(std::string_view text, std::size_t limit) {
    std::string line;
    while (!text.empty()) {
        auto const character = text::ReadCharacter(text);
        auto const bytes = text.substr(0, character.length);
        auto const size = line.size();
        if (character.printable)
            line += bytes;
        else
            line += Escape(bytes);
        if (line.size() > limit) {
            line.resize(size);
            return line + "... (" + std::to_string(text.size()) + " bytes more)";
        }
        text.remove_prefix(character.length);
    }
    return line;
}

} // namespace zarn::logging
