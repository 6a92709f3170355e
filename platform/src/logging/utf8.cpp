#include "logging/utf8.h"

#include <algorithm>
#include <array>

namespace zarn::logging::utf8 {

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

bool IsBetween(char byte, unsigned char low, unsigned char high) {
    auto const value = static_cast<unsigned char>(byte);
    return low <= value && value <= high;
}

} // namespace

Character ReadCharacter(std::string_view text) noexcept {
    if (IsBetween(text.front(), 0x00, 0x7f)) return {1, IsBetween(text.front(), 0x20, 0x7e)};
    auto const* form = std::ranges::find_if(
        Forms, [&](Form const& each) { return IsBetween(text.front(), each.firstLow, each.firstHigh); });
    if (form == Forms.end() || text.size() < form->length) return {1, false};
    if (!IsBetween(text[1], form->secondLow, form->secondHigh)) return {1, false};
    auto const rest = text.substr(2, form->length - 2);
    if (!std::ranges::all_of(rest, [](char byte) { return IsBetween(byte, 0x80, 0xbf); })) return {1, false};
    bool const control = text.front() == '\xc2' && IsBetween(text[1], 0x80, 0x9f);
    return {form->length, !control};
}

} // namespace zarn::logging::utf8
