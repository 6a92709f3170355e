#include "configuration/text/writer.h"

#include <boost/json/serialize.hpp>
#include <boost/json/value.hpp>

#include <charconv>
#include <cstddef>

namespace zarn::configuration::text {

namespace {

void StartLine(std::string& text, std::size_t level) {
    text += '\n';
    text.append(level * 2, ' ');
}

/// Writes what is between two brackets, an element per line.
template <class Container, class WriteElement>
void WriteLines(Container const& container, std::string& text, std::size_t level, WriteElement writeElement) {
    bool first = true;
    for (auto const& element : container) {
        if (!first) text += ',';
        first = false;
        StartLine(text, level + 1);
        writeElement(element);
    }
    if (!first) StartLine(text, level);
}

std::string WriteString(boost::json::string_view string) { return boost::json::serialize(boost::json::value(string)); }

} // namespace

std::string WriteDouble(double number) {
    char digits[32];
    std::string text(digits, std::to_chars(digits, digits + sizeof digits, number).ptr);
    if (text.find_first_of(".en") == std::string::npos) text += ".0";
    return text;
}

void Write(boost::json::value const& json, std::string& text, std::size_t level) {
    if (auto const* object = json.if_object()) {
        text += '{';
        WriteLines(*object, text, level, [&](auto const& member) {
            text += WriteString(member.key()) + ": ";
            Write(member.value(), text, level + 1);
        });
        text += '}';
    } else if (auto const* array = json.if_array()) {
        text += '[';
        WriteLines(*array, text, level, [&](auto const& element) { Write(element, text, level + 1); });
        text += ']';
    } else if (auto const* number = json.if_double()) {
        text += WriteDouble(*number);
    } else {
        text += boost::json::serialize(json);
    }
}

} // namespace zarn::configuration::text
