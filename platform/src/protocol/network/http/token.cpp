#include "protocol/network/http/token.h"

#include <algorithm>

namespace zarn::protocol::network::http {

namespace {

// Not the functions of <cctype>: those go by the locale.
bool IsAlphanumeric(char character) {
    return ('0' <= character && character <= '9') || ('A' <= character && character <= 'Z') ||
           ('a' <= character && character <= 'z');
}

char ToLower(char character) {
    return 'A' <= character && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
}

} // namespace

bool IsToken(std::string_view text) noexcept {
    static constexpr std::string_view Symbols = "!#$%&'*+-.^_`|~";
    return !text.empty() && std::ranges::all_of(text, [](char character) {
        return IsAlphanumeric(character) || Symbols.find(character) != std::string_view::npos;
    });
}

bool EqualsIgnoringCase(std::string_view left, std::string_view right) noexcept {
    return std::ranges::equal(left, right, {}, ToLower, ToLower);
}

std::string_view Trim(std::string_view text) noexcept {
    constexpr std::string_view Blank = " \t";
    auto const first = text.find_first_not_of(Blank);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(Blank) - first + 1);
}

} // namespace zarn::protocol::network::http
