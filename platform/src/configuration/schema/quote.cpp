#include "configuration/schema/quote.h"

#include "configuration/text/writer.h"

#include <zarn/logging/format.h>
#include <zarn/text/character.h>

#include <boost/json/serialize.hpp>
#include <boost/json/value.hpp>

namespace zarn::configuration::schema {

namespace {

constexpr std::size_t MaximumLength = 80;

std::string Shorten(std::string text) {
    text = logging::ToLine(text, std::string::npos); // JSON leaves some control characters as they are
    if (text.size() <= MaximumLength) return text;
    text.resize(zarn::text::CutShort(text, MaximumLength).size());
    return text += "...";
}

bool IsNumber(std::string_view text) noexcept {
    return !text.empty() && text.find_first_not_of("+-.0123456789eE") == std::string_view::npos;
}

} // namespace

std::string Quote(boost::json::value const& json) {
    // Boost writes 1.5 as 1.5E0.
    if (auto const* number = json.if_double()) return text::WriteDouble(*number);
    return Shorten(boost::json::serialize(json));
}

std::string Quote(std::string_view text) {
    if (IsNumber(text)) return Shorten(std::string(text));
    if (!zarn::text::IsUtf8(text)) return "a text that is not UTF-8";
    return Shorten(boost::json::serialize(boost::json::value(boost::json::string_view(text.data(), text.size()))));
}

} // namespace zarn::configuration::schema
