#include "configuration/schema/conversion.h"

#include "configuration/schema/quote.h"

#include <zarn/text/character.h>

#include <boost/json/value.hpp>

#include <charconv>
#include <cmath>
#include <concepts>
#include <system_error>
#include <type_traits>
#include <utility>

namespace zarn::configuration::schema {

namespace {

template <class T>
constexpr bool IsInteger = std::is_integral_v<T> && !std::same_as<T, bool>;

template <class T>
std::optional<T> NumberFromText(std::string_view text) {
    T number{};
    auto const* const end = text.data() + text.size();
    auto const result = std::from_chars(text.data(), end, number);
    if (result.ec != std::errc() || result.ptr != end) return std::nullopt;
    return number;
}

template <class T>
std::optional<T> IntegerFromJson(boost::json::value const& json) {
    if (auto const* number = json.if_int64(); number && std::in_range<T>(*number)) return static_cast<T>(*number);
    if (auto const* number = json.if_uint64(); number && std::in_range<T>(*number)) return static_cast<T>(*number);
    return std::nullopt;
}

template <class T>
constexpr char const* RuleText() {
    if constexpr (std::same_as<T, bool>) return "true or false";
    if constexpr (std::same_as<T, std::string>) return "a text in UTF-8";
    if constexpr (std::same_as<T, std::uint16_t>) return "a whole number from 0 to 65535";
    if constexpr (std::same_as<T, std::uint32_t>) return "a whole number from 0 to 4294967295";
    if constexpr (std::same_as<T, std::int32_t>) return "a whole number from -2147483648 to 2147483647";
    if constexpr (std::same_as<T, std::int64_t>)
        return "a whole number from -9223372036854775808 to 9223372036854775807";
    if constexpr (std::same_as<T, double>) return "a finite number";
}

template <class T>
constexpr char const* JsonTypeName() {
    if constexpr (std::same_as<T, bool>) return "boolean";
    if constexpr (std::same_as<T, std::string>) return "string";
    if constexpr (IsInteger<T>) return "integer";
    if constexpr (std::same_as<T, double>) return "number";
}

} // namespace

template <class T>
char const* const Conversion<T>::JsonType = JsonTypeName<T>();

template <class T>
char const* const Conversion<T>::Rule = RuleText<T>();

template <class T>
std::optional<T> Conversion<T>::FromText(std::string_view text) {
    if constexpr (std::same_as<T, bool>) {
        if (text == "true") return true;
        if (text == "false") return false;
        return std::nullopt;
    } else if constexpr (std::same_as<T, std::string>) {
        return std::string(text);
    } else {
        return NumberFromText<T>(text);
    }
}

template <class T>
std::optional<T> Conversion<T>::FromJson(boost::json::value const& json) {
    if constexpr (std::same_as<T, bool>) {
        if (auto const* flag = json.if_bool()) return *flag;
    } else if constexpr (std::same_as<T, std::string>) {
        if (auto const* text = json.if_string()) return std::string(text->data(), text->size());
    } else if constexpr (IsInteger<T>) {
        return IntegerFromJson<T>(json);
    } else if (json.is_number()) {
        return json.to_number<double>();
    }
    return std::nullopt;
}

template <class T>
std::string Conversion<T>::WriteText(T const& value) {
    if constexpr (std::same_as<T, bool>) {
        return value ? "true" : "false";
    } else if constexpr (std::same_as<T, std::string>) {
        return value;
    } else {
        char text[32];
        return {text, std::to_chars(text, text + sizeof text, value).ptr};
    }
}

template <class T>
boost::json::value Conversion<T>::WriteJson(T const& value) {
    if constexpr (std::same_as<T, std::string>) {
        return boost::json::value(boost::json::string_view(value));
    } else {
        return boost::json::value(value);
    }
}

template <class T>
bool Conversion<T>::IsWritable([[maybe_unused]] T const& value) {
    if constexpr (std::same_as<T, std::string>) {
        return zarn::text::IsUtf8(value);
    } else if constexpr (std::same_as<T, double>) {
        return std::isfinite(value);
    } else {
        return true;
    }
}

template struct Conversion<bool>;
template struct Conversion<std::string>;
template struct Conversion<std::uint16_t>;
template struct Conversion<std::uint32_t>;
template struct Conversion<std::int32_t>;
template struct Conversion<std::int64_t>;
template struct Conversion<double>;

} // namespace zarn::configuration::schema
