#include "host/events/value_reader.h"

#include "host/events/read_events.h"

#include <zarn/json/parse.h>
#include <zarn/text/character.h>

#include <boost/algorithm/hex.hpp>
#include <boost/json/array.hpp>
#include <boost/json/object.hpp>
#include <boost/json/serialize.hpp>
#include <boost/json/string.hpp>

#include <algorithm>
#include <iterator>
#include <span>

namespace zarn::host::events {
namespace {

/// How much of a text messages quote.
constexpr std::size_t MostBytes = 80;

/// Escapes DEL and C1, which control terminals and which the serializer leaves as they are.
std::string EscapeOthers(std::string_view text) {
    std::string escaped;
    while (!text.empty()) {
        auto const [length, valid, printable] = text::ReadCharacter(text);
        if (printable) {
            escaped += text.substr(0, length);
        } else {
            escaped += "\\u00"; // the last byte is the code
            boost::algorithm::hex_lower(text.substr(length - 1, 1), std::back_inserter(escaped));
        }
        text.remove_prefix(length);
    }
    return escaped;
}

std::string QuoteText(std::string_view text) {
    auto const part = text::CutShort(text, MostBytes);
    auto quoted = EscapeOthers(boost::json::serialize(boost::json::string(part.data(), part.size())));
    if (part.size() < text.size()) quoted += "...";
    return quoted;
}

/// A key as messages name it: as it is when it is a word, else quoted.
std::string QuoteKey(std::string_view key) {
    bool const isWord = !key.empty() && key.size() <= MostBytes && std::ranges::all_of(key, [](char c) {
        return text::IsAlphanumeric(c) || c == '_' || c == '-';
    });
    return isWord ? std::string(key) : QuoteText(key);
}

/// The path that open lists and objects lead to, as ValuePath writes it.
std::string WritePath(std::span<json::Level const> levels) {
    auto const& outermost = levels.front();
    auto text = "event " + std::to_string(outermost.isList ? std::max<std::size_t>(outermost.elements, 1) : 1);
    char const* separator = ": ";
    for (auto const& level : levels.subspan(outermost.isList ? 1 : 0)) {
        if (level.isList && level.elements > 0) text += '[' + std::to_string(level.elements - 1) + ']';
        if (level.key) text += separator + QuoteKey(*level.key);
        separator = ".";
    }
    return text;
}

[[noreturn]] void Refuse(json::ParseError const& error) {
    using Reason = json::ParseError::Reason;
    auto const& levels = error.GetPath();
    auto const container = [&] {
        if (levels.size() == 1) return std::string(levels.front().isList ? "the list of events" : "event 1");
        return WritePath(std::span(levels).first(levels.size() - 1));
    };
    switch (error.GetReason()) {
    case Reason::DuplicateKey:
        throw ReadError(WritePath(levels) + ": occurs twice");
    case Reason::TooManyFields:
        throw ReadError(container() + ": more than " + std::to_string(MaximumFields) + " fields");
    case Reason::TooManyElements:
        throw ReadError(container() + ": more than " + std::to_string(MaximumEvents) + " elements");
    case Reason::TooManyLevels:
        throw ReadError(WritePath(levels) + ": more than " + std::to_string(MaximumDepth) + " levels");
    case Reason::Syntax:
        break;
    }
    throw ReadError(error.GetPosition() + ": this is not JSON: " + error.what());
}

} // namespace

std::string ValuePath::ToString() const {
    if (!outer) return "event " + std::to_string(index + 1);
    auto text = outer->ToString();
    if (key.data() == nullptr) return text + '[' + std::to_string(index) + ']';
    text += outer->outer ? "." : ": ";
    return text + QuoteKey(key);
}

void ValuePath::Refuse(std::string const& why) const { throw ReadError(ToString() + ": " + why); }

boost::json::value ParseDocument(std::string_view text) {
    if (text.size() > MaximumDocumentBytes)
        throw ReadError("the text is longer than " + std::to_string(MaximumDocumentBytes) + " bytes");
    try {
        return json::Parse(text, {.levels = MaximumDepth, .fields = MaximumFields, .elements = MaximumEvents});
    } catch (json::ParseError const& error) {
        Refuse(error);
    }
}

std::string Quote(boost::json::value const& value) {
    if (value.is_array()) return "a list";
    if (value.is_object()) return "an object";
    if (auto const* text = value.if_string()) return QuoteText({text->data(), text->size()});
    return boost::json::serialize(value);
}

std::string ReadText(boost::json::value const& value, ValuePath const& path) {
    auto const* const string = value.if_string();
    if (!string) path.Refuse(Quote(value) + " is not a text");
    std::string_view const text(string->data(), string->size());
    if (text.size() > MaximumTextBytes)
        path.Refuse(Quote(value) + " is longer than " + std::to_string(MaximumTextBytes) + " bytes");
    if (!text::IsXml(text)) path.Refuse(Quote(value) + " holds a character that XML cannot carry");
    return std::string(text);
}

boost::json::array const& ReadList(boost::json::value const& value, ValuePath const& path, std::size_t most) {
    auto const* const list = value.if_array();
    if (!list) path.Refuse(Quote(value) + " is not a list");
    if (list->size() > most)
        path.Refuse(std::to_string(list->size()) + " elements are more than " + std::to_string(most));
    return *list;
}

boost::json::object const& ReadObject(boost::json::value const& value, ValuePath const& path) {
    auto const* const object = value.if_object();
    if (!object) path.Refuse(Quote(value) + " is not an object");
    return *object;
}

} // namespace zarn::host::events
