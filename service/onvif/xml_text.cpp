#include "xml_text.h"

#include <algorithm>
#include <charconv>
#include <cstddef>

namespace zarn::service::onvif {

namespace {

bool IsAscii(char each) { return static_cast<unsigned char>(each) < 0x80; }

/// Whether a byte stays only if a closer look says so. Without branches, for the compiler to test many bytes at once.
constexpr unsigned char IsSuspect(char each) {
    auto const byte = static_cast<unsigned char>(each);
    return static_cast<unsigned char>((byte < 0x20) | (byte >= 0x7f) | (byte == '&'));
}

/// The first position from `at` on whose byte is suspect; the size when there is none.
std::size_t FindSuspect(std::string_view xml, std::size_t at) {
    constexpr std::size_t Block = 64;
    for (; at + Block <= xml.size(); at += Block) {
        unsigned char suspect = 0;
        for (std::size_t i = 0; i < Block; ++i) suspect |= IsSuspect(xml[at + i]);
        if (suspect != 0) break;
    }
    while (at < xml.size() && IsSuspect(xml[at]) == 0) ++at;
    return at;
}

/// What a text begins with, and whether it stays.
struct Part {
    std::size_t length;
    bool isKept;
};

using Rule = bool(std::string_view) noexcept;

/// A reference to an ASCII character.
std::optional<Part> ReadReference(std::string_view xml, Rule* isKept) {
    constexpr std::string_view Start = "&#x";
    unsigned code = 0;
    if (!xml.starts_with(Start)) return std::nullopt;
    auto const* const end = xml.data() + xml.size();
    auto const [behind, error] = std::from_chars(xml.data() + Start.size(), end, code, 16);
    if (error != std::errc() || behind == end || *behind != ';' || code >= 0x80) return std::nullopt;
    auto const character = static_cast<char>(code);
    return Part{static_cast<std::size_t>(behind - xml.data()) + 1, isKept({&character, 1})};
}

/// A reference, an ASCII character, or all bytes up to the next ASCII character.
Part ReadPart(std::string_view xml, Rule* isKept) {
    if (auto const reference = ReadReference(xml, isKept)) return *reference;
    auto const end = IsAscii(xml.front()) ? xml.begin() + 1 : std::ranges::find_if(xml, IsAscii);
    auto const length = static_cast<std::size_t>(end - xml.begin());
    return {length, isKept(xml.substr(0, length))};
}

} // namespace

std::optional<std::string> MaskForXml(std::string_view xml, bool (*isKept)(std::string_view) noexcept) {
    std::optional<std::string> masked;
    for (auto at = FindSuspect(xml, 0); at < xml.size();) {
        auto const part = ReadPart(xml.substr(at), isKept);
        if (!part.isKept) {
            if (!masked) masked = xml;
            masked->replace(at, part.length, part.length, '?');
        }
        at = FindSuspect(xml, at + part.length);
    }
    return masked;
}

} // namespace zarn::service::onvif
