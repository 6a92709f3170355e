#include "xml_text.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <utility>

namespace zarn::service::onvif {

namespace {

bool IsAscii(char each) { return static_cast<unsigned char>(each) < 0x80; }

/// Whether a byte stays only if a closer look says so. Without branches, for the compiler to test many bytes at once.
constexpr unsigned char IsOdd(char each) {
    auto const byte = static_cast<unsigned char>(each);
    return static_cast<unsigned char>((byte < 0x20) | (byte >= 0x7f) | (byte == '&'));
}

/// The first position from `at` on whose byte is odd; the size when there is none.
std::size_t FindOdd(std::string_view xml, std::size_t at) {
    constexpr std::size_t Block = 64;
    for (; at + Block <= xml.size(); at += Block) {
        unsigned char odd = 0;
        for (std::size_t i = 0; i < Block; ++i) odd |= IsOdd(xml[at + i]);
        if (odd != 0) break;
    }
    while (at < xml.size() && IsOdd(xml[at]) == 0) ++at;
    return at;
}

/// The length of the reference to an ASCII character that a text begins with, and the character; length 0 for any
/// other.
std::pair<std::size_t, char> ReadReference(std::string_view xml) {
    constexpr std::string_view Start = "&#x";
    unsigned code = 0;
    if (!xml.starts_with(Start)) return {};
    auto const* const end = xml.data() + xml.size();
    auto const [behind, error] = std::from_chars(xml.data() + Start.size(), end, code, 16);
    if (error != std::errc() || behind == end || *behind != ';' || code >= 0x80) return {};
    return {static_cast<std::size_t>(behind - xml.data()) + 1, static_cast<char>(code)};
}

} // namespace

std::optional<std::string> MaskForXml(std::string_view xml, bool (*isKept)(std::string_view) noexcept) {
    std::optional<std::string> masked;
    for (auto at = FindOdd(xml, 0); at < xml.size();) {
        auto part = xml.substr(at);
        auto character = part.front();
        std::string_view checked(&character, 1);
        if (auto const [length, referred] = ReadReference(part); length > 0) {
            part = part.substr(0, length);
            character = referred;
        } else if (IsAscii(character)) {
            part = part.substr(0, 1);
        } else {
            part = part.substr(0, static_cast<std::size_t>(std::ranges::find_if(part, IsAscii) - part.begin()));
            checked = part;
        }
        if (!isKept(checked)) {
            if (!masked) masked = xml;
            masked->replace(at, part.size(), part.size(), '?');
        }
        at = FindOdd(xml, at + part.size());
    }
    return masked;
}

} // namespace zarn::service::onvif
