#include "host/events/quote.h"

#include <zarn/text/character.h>

#include <boost/json/serialize.hpp>
#include <boost/json/string.hpp>
#include <boost/json/value.hpp>

#include <algorithm>
#include <cstddef>

namespace zarn::host::events {
namespace {

constexpr std::size_t MostBytes = 80;

/// The serializer escapes what is below a blank, but not DEL nor C1, which terminals take for orders.
std::string EscapeOthers(std::string_view text) {
    constexpr std::string_view Digits = "0123456789abcdef";
    std::string escaped;
    auto const append = [&](unsigned char code) {
        escaped += "\\u00";
        escaped += Digits[code >> 4U];
        escaped += Digits[code & 0xfU];
    };
    for (std::size_t i = 0; i < text.size(); ++i) {
        auto const byte = static_cast<unsigned char>(text[i]);
        bool const c1 = byte == 0xc2 && i + 1 < text.size() && static_cast<unsigned char>(text[i + 1]) < 0xa0;
        if (byte == 0x7f) {
            append(byte);
        } else if (c1) {
            append(static_cast<unsigned char>(text[++i]));
        } else {
            escaped += text[i];
        }
    }
    return escaped;
}

std::string QuoteText(std::string_view text) {
    auto const part = text::CutShort(text, MostBytes);
    auto quoted = EscapeOthers(boost::json::serialize(boost::json::string(part.data(), part.size())));
    if (part.size() < text.size()) quoted += "...";
    return quoted;
}

bool IsWord(std::string_view key) {
    return !key.empty() && key.size() <= MostBytes && std::all_of(key.begin(), key.end(), [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' || c == '-';
    });
}

} // namespace

std::string Quote(boost::json::value const& value) {
    if (value.is_array()) return "a list";
    if (value.is_object()) return "an object";
    if (auto const* text = value.if_string()) return QuoteText({text->data(), text->size()});
    return boost::json::serialize(value);
}

std::string QuoteKey(std::string_view key) { return IsWord(key) ? std::string(key) : QuoteText(key); }

} // namespace zarn::host::events
