#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// Which characters a text holds: whether XML, JSON, a log line or a header field can carry it.
namespace zarn::text {

inline constexpr std::string_view WhiteSpace = " \t\r\n"; ///< of XML. Source: XML 1.0, 2.3

/// Whether a byte is an ASCII letter or digit, whatever the locale.
constexpr bool IsAlphanumeric(char byte) noexcept {
    return (byte >= '0' && byte <= '9') || (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z');
}

/// The first character of a text.
struct Character {
    std::size_t length; ///< in bytes, at least 1
    bool valid;         ///< false for a byte that is not part of UTF-8
    bool printable;     ///< false for control characters (C0, DEL, C1) and for invalid bytes
};

/// Reads the first character of `text`, which must not be empty. Source: RFC 3629, 4.
Character ReadCharacter(std::string_view text) noexcept;

/// Whether a text is valid UTF-8.
bool IsUtf8(std::string_view text) noexcept;

/// Whether a text has no ASCII control characters (C0 and DEL), whatever its encoding: it is one line.
bool IsLine(std::string_view text) noexcept;

/// Whether XML can carry a text: it is UTF-8 without control characters of C0 other than white space, and without
/// U+FFFE and U+FFFF. Source: XML 1.0, 2.2.
bool IsXml(std::string_view text) noexcept;

/// As IsXml, and without the control characters that XML only discourages (DEL, C1).
bool IsPlainXml(std::string_view text) noexcept;

/// Whether XML can carry a text and it is one line.
bool IsXmlLine(std::string_view text) noexcept;

/// The longest beginning of a text of at most `most` bytes that does not end within a character.
std::string_view CutShort(std::string_view text, std::size_t most) noexcept;

/// A text with every byte for which `isKept` is false as "%XX". Source: RFC 3986, 2.1.
std::string PercentEncode(std::string_view text, bool (*isKept)(char));

/// A text without the given characters at either end.
std::string_view Trim(std::string_view text, std::string_view characters = WhiteSpace) noexcept;

} // namespace zarn::text
