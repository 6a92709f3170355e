#pragma once

#include <concepts>
#include <cstddef>
#include <locale>
#include <span>
#include <sstream>
#include <string>
#include <string_view>
#include <type_traits>

namespace zarn::logging {

/// Puts arguments into the numbered placeholders of a format: `%0%` is the first argument, `%1%` the second.
/// Placeholders may stand in any order and be repeated. One without an argument, and any other "%", is kept.
/// Arguments are put in as they are: a placeholder inside an argument is not looked at.
std::string Format(std::string_view format, std::span<std::string const> arguments);

/// Makes a text fit for one line of a log, whatever a peer put into it.
/// Control characters (C0, DEL, C1) and bytes that are not UTF-8 become `\n`, `\r`, `\t` or `\xNN`; when the result
/// would be longer than `limit` bytes it is cut between two characters and "... (N bytes more)" says how much of `text`
/// is left out.
std::string ToLine(std::string_view text, std::size_t limit);

/// The text of one log argument: strings as they are (a null `char const*` is "(null)"), bool as "true" or "false",
/// integers in decimal (also those of one byte, except `char`), everything else by its `operator<<` in the "C" locale.
template <class T>
std::string ToText(T const& value) {
    if constexpr (std::is_pointer_v<T> && std::is_convertible_v<T, char const*>) {
        return value == nullptr ? "(null)" : std::string(static_cast<char const*>(value));
    } else if constexpr (std::is_convertible_v<T const&, std::string_view>) {
        return std::string(std::string_view(value));
    } else if constexpr (std::same_as<T, bool>) {
        return value ? "true" : "false";
    } else if constexpr (std::integral<T> && !std::same_as<T, char>) {
        return std::to_string(value);
    } else {
        std::ostringstream stream;
        stream.imbue(std::locale::classic());
        stream << value;
        return std::move(stream).str();
    }
}

} // namespace zarn::logging
