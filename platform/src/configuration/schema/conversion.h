#pragma once

#include <zarn/text/character.h>

#include <boost/json/value.hpp>

#include <charconv>
#include <cmath>
#include <concepts>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <type_traits>
#include <utility>

namespace zarn::configuration::schema {

/// How a value of type T, one of those that a node can have, is written as text and as JSON.
template <class T>
struct Conversion {
    static constexpr bool IsInteger = std::is_integral_v<T> && !std::same_as<T, bool>;

    /// The type in a schema.
    static char const* GetJsonType() {
        if constexpr (std::same_as<T, bool>) return "boolean";
        if constexpr (std::same_as<T, std::string>) return "string";
        if constexpr (std::same_as<T, double>) return "number";
        return "integer";
    }

    /// Completes "... is not" for a value that is not a T.
    static std::string GetRule() {
        if constexpr (std::same_as<T, bool>) return "true or false";
        if constexpr (std::same_as<T, std::string>) return "a text in UTF-8";
        if constexpr (std::same_as<T, double>) return "a finite number";
        if constexpr (IsInteger) {
            using Limits = std::numeric_limits<T>;
            return "a whole number from " + std::to_string(Limits::min()) + " to " + std::to_string(Limits::max());
        }
    }

    /// Nothing when the text is not a T.
    static std::optional<T> FromText(std::string_view text) {
        if constexpr (std::same_as<T, bool>) {
            if (text == "true") return true;
            if (text == "false") return false;
            return std::nullopt;
        } else if constexpr (std::same_as<T, std::string>) {
            return std::string(text);
        } else {
            T number{};
            auto const* const end = text.data() + text.size();
            auto const result = std::from_chars(text.data(), end, number);
            if (result.ec != std::errc() || result.ptr != end) return std::nullopt;
            return number;
        }
    }

    /// Nothing when the JSON value is not a T.
    static std::optional<T> FromJson(boost::json::value const& json) {
        if constexpr (std::same_as<T, bool>) {
            if (auto const* flag = json.if_bool()) return *flag;
        } else if constexpr (std::same_as<T, std::string>) {
            if (auto const* text = json.if_string()) return std::string(text->data(), text->size());
        } else if constexpr (IsInteger) {
            if (auto const* number = json.if_int64(); number && std::in_range<T>(*number)) return T(*number);
            if (auto const* number = json.if_uint64(); number && std::in_range<T>(*number)) return T(*number);
        } else if (json.is_number()) {
            return json.to_number<double>();
        }
        return std::nullopt;
    }

    static std::string WriteText(T const& value) {
        if constexpr (std::same_as<T, bool>) {
            return value ? "true" : "false";
        } else if constexpr (std::same_as<T, std::string>) {
            return value;
        } else {
            char text[32];
            return {text, std::to_chars(text, text + sizeof text, value).ptr};
        }
    }

    static boost::json::value WriteJson(T const& value) {
        if constexpr (std::same_as<T, std::string>) {
            return boost::json::value(boost::json::string_view(value));
        } else {
            return boost::json::value(value);
        }
    }

    /// Whether a value can be written at all: numbers must be finite, texts UTF-8.
    static bool IsWritable([[maybe_unused]] T const& value) {
        if constexpr (std::same_as<T, std::string>) return zarn::text::IsUtf8(value);
        if constexpr (std::same_as<T, double>) return std::isfinite(value);
        return true;
    }
};

} // namespace zarn::configuration::schema
