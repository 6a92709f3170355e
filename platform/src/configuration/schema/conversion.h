#pragma once

#include <boost/json/fwd.hpp>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace zarn::configuration::schema {

/// How a value of type T is written as text and as JSON.
template <class T>
struct Conversion {
    /// The type in a schema.
    static char const* const JsonType;

    /// Completes "... is not" for what is no T.
    static char const* const Rule;

    /// Nothing when the text or the JSON value is no T.
    static std::optional<T> FromText(std::string_view text);
    static std::optional<T> FromJson(boost::json::value const& json);

    static std::string WriteText(T const& value);
    static boost::json::value WriteJson(T const& value);

    /// Whether a value can be written at all: numbers must be finite, texts UTF-8.
    static bool IsWritable(T const& value);
};

extern template struct Conversion<bool>;
extern template struct Conversion<std::string>;
extern template struct Conversion<std::uint16_t>;
extern template struct Conversion<std::uint32_t>;
extern template struct Conversion<std::int32_t>;
extern template struct Conversion<std::int64_t>;
extern template struct Conversion<double>;

} // namespace zarn::configuration::schema
