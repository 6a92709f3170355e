#include <zarn/text/character.h>

#include <algorithm>
#include <array>

namespace zarn::text {

namespace {

/// One form of a character of several bytes. The bounds of the second byte keep out overlong forms, surrogates and what
/// is above U+10FFFF.
struct Form {
    unsigned char firstLow;
    unsigned char firstHigh;
    unsigned char secondLow;
    unsigned char secondHigh;
    std::size_t length;
};

constexpr std::array Forms{
    Form{0xc2, 0xdf, 0x80, 0xbf, 2}, Form{0xe0, 0xe0, 0xa0, 0xbf, 3}, Form{0xe1, 0xec, 0x80, 0xbf, 3},
    Form{0xed, 0xed, 0x80, 0x9f, 3}, Form{0xee, 0xef, 0x80, 0xbf, 3}, Form{0xf0, 0xf0, 0x90, 0xbf, 4},
    Form{0xf1, 0xf3, 0x80, 0xbf, 4}, Form{0xf4, 0xf4, 0x80, 0x8f, 4},
};

constexpr bool IsBetween(char byte, unsigned char low, unsigned char high) {
    auto const value = static_cast<unsigned char>(byte);
    return low <= value && value <= high;
}

/// Whether `accepts` is true of every character and its bytes.
template <class Accepts>
bool All(std::string_view text, Accepts accepts) {
    while (!text.empty()) {
        auto const character = ReadCharacter(text);
        if (!accepts(character, text.substr(0, character.length))) return false;
        text.remove_prefix(character.length);
    }
    return true;
}

bool IsXmlCharacter(Character const& character, std::string_view bytes) {
    if (bytes == "\xef\xbf\xbe" || bytes == "\xef\xbf\xbf") return false; // U+FFFE, U+FFFF
    return character.valid && (!IsBetween(bytes.front(), 0x00, 0x1f) || WhiteSpace.find(bytes) != WhiteSpace.npos);
}

} // namespace

Character ReadCharacter(std::string_view text) noexcept {
    if (IsBetween(text.front(), 0x00, 0x7f)) return {1, true, IsBetween(text.front(), 0x20, 0x7e)};
    auto const* form = std::ranges::find_if(
        Forms, [&](Form const& each) { return IsBetween(text.front(), each.firstLow, each.firstHigh); });
    if (form == Forms.end() || text.size() < form->length) return {1, false, false};
    if (!IsBetween(text[1], form->secondLow, form->secondHigh)) return {1, false, false};
    auto const rest = text.substr(2, form->length - 2);
    if (!std::ranges::all_of(rest, [](char byte) { return IsBetween(byte, 0x80, 0xbf); })) return {1, false, false};
    bool const control = text.front() == '\xc2' && IsBetween(text[1], 0x80, 0x9f);
    return {form->length, true, !control};
}

bool IsUtf8(std::string_view text) noexcept {
    return All(text, [](Character const& character, std::string_view) { return character.valid; });
}

bool IsLine(std::string_view text) noexcept {
    return std::ranges::none_of(text, [](char byte) { return IsBetween(byte, 0x00, 0x1f) || byte == 0x7f; });
}

bool IsXml(std::string_view text) noexcept { return All(text, IsXmlCharacter); }

bool IsPlainXml(std::string_view text) noexcept {
    return All(text, [](Character const& character, std::string_view bytes) {
        return IsXmlCharacter(character, bytes) && (character.printable || IsBetween(bytes.front(), 0x00, 0x1f));
    });
}

bool IsXmlLine(std::string_view text) noexcept { return IsLine(text) && IsXml(text); }

std::string_view CutShort(std::string_view text, std::size_t most) noexcept {
    if (text.size() <= most) return text;
    while (most > 0 && IsBetween(text[most], 0x80, 0xbf)) --most;
    return text.substr(0, most);
}

std::string PercentEncode(std::string_view text, bool (*isKept)(char)) {
    constexpr std::string_view Digits = "0123456789ABCDEF";
    std::string encoded;
    encoded.reserve(text.size());
    for (char const each : text) {
        auto const byte = static_cast<unsigned char>(each);
        if (isKept(each))
            encoded += each;
        else
            encoded += {'%', Digits[byte >> 4U], Digits[byte & 0xfU]};
    }
    return encoded;
}

std::string_view Trim(std::string_view text, std::string_view characters) noexcept {
    text.remove_prefix(std::min(text.find_first_not_of(characters), text.size()));
    text.remove_suffix(text.size() - (text.find_last_not_of(characters) + 1));
    return text;
}

} // namespace zarn::text
