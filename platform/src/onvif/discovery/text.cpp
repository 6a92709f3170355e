#include "onvif/discovery/text.h"

#include "logging/utf8.h"

#include <algorithm>

namespace zarn::onvif::discovery {

namespace {

constexpr std::string_view WhiteSpace = " \t\r\n";

bool IsXmlCharacter(std::string_view character) noexcept {
    if (character.size() > 1) return character != "\xef\xbf\xbe" && character != "\xef\xbf\xbf"; // U+FFFE, U+FFFF
    return static_cast<unsigned char>(character.front()) < 0x80 &&
           (character.front() >= 0x20 || WhiteSpace.find(character.front()) != std::string_view::npos);
}

} // namespace

bool IsXmlText(std::string_view text) noexcept {
    while (!text.empty()) {
        auto const length = logging::utf8::ReadCharacter(text).length; // 1 for a byte that is no part of UTF-8
        if (!IsXmlCharacter(text.substr(0, length))) return false;
        text.remove_prefix(length);
    }
    return true;
}

bool IsXmlLine(std::string_view text) noexcept {
    auto const isControl = [](char each) { return (each >= 0 && each < 0x20) || each == 0x7f; };
    return IsXmlText(text) && std::ranges::none_of(text, isControl);
}

std::string_view Trim(std::string_view text) noexcept {
    auto const first = text.find_first_not_of(WhiteSpace);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(WhiteSpace) - first + 1);
}

std::vector<std::string_view> Split(std::string_view text) {
    std::vector<std::string_view> items;
    for (auto rest = Trim(text); !rest.empty();) {
        auto const item = rest.substr(0, rest.find_first_of(WhiteSpace));
        items.push_back(item);
        rest = Trim(rest.substr(item.size()));
    }
    return items;
}

} // namespace zarn::onvif::discovery
