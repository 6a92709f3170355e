#include "host/web/digest_parameters.h"

#include <boost/algorithm/string/case_conv.hpp>
#include <boost/algorithm/string/predicate.hpp>

#include <algorithm>
#include <cstddef>
#include <utility>

namespace zarn::host::web {
namespace {

constexpr std::string_view Scheme = "Digest ";
constexpr std::string_view Blanks = " \t";

void SkipBlanks(std::string_view& text) { text.remove_prefix(std::min(text.find_first_not_of(Blanks), text.size())); }

/// Takes what stands before any of `ends`, without blanks at its end.
std::string TakeUntil(std::string_view& text, std::string_view ends) {
    std::size_t const end = std::min(text.find_first_of(ends), text.size());
    std::string_view taken = text.substr(0, end);
    text.remove_prefix(end);
    taken = taken.substr(0, taken.find_last_not_of(Blanks) + 1);
    return std::string(taken);
}

/// Takes a quoted string; none when it does not end.
std::optional<std::string> TakeQuoted(std::string_view& text) {
    std::string value;
    for (std::size_t i = 1; i < text.size(); ++i) {
        if (text[i] == '"') {
            text.remove_prefix(i + 1);
            return value;
        }
        if (text[i] == '\\' && ++i == text.size()) break;
        value += text[i];
    }
    return std::nullopt;
}

} // namespace

std::string RemoveBlanksBeforeSeparators(std::string_view authorization) {
    std::string text;
    text.reserve(authorization.size());
    bool quoted = false;
    for (std::size_t i = 0; i < authorization.size(); ++i) {
        char const character = authorization[i];
        if (!quoted && (character == ',' || character == '=')) text.resize(text.find_last_not_of(Blanks) + 1);
        if (character == '"') quoted = !quoted;
        text += character;
        if (quoted && character == '\\' && i + 1 < authorization.size()) text += authorization[++i];
    }
    return text;
}

std::optional<std::map<std::string, std::string>> ParseDigestParameters(std::string_view authorization) {
    if (!boost::istarts_with(authorization, Scheme)) return std::nullopt;
    std::string_view rest = authorization.substr(Scheme.size());
    std::map<std::string, std::string> parameters;
    for (SkipBlanks(rest); !rest.empty(); SkipBlanks(rest)) {
        std::string name = boost::to_lower_copy(TakeUntil(rest, "=,\""));
        if (name.empty() || !rest.starts_with('=')) return std::nullopt;
        rest.remove_prefix(1);
        SkipBlanks(rest);
        auto value = rest.starts_with('"') ? TakeQuoted(rest) : TakeUntil(rest, ",");
        if (!value || !parameters.emplace(std::move(name), *std::move(value)).second) return std::nullopt;
        SkipBlanks(rest);
        if (rest.empty()) break;
        if (!rest.starts_with(',')) return std::nullopt;
        rest.remove_prefix(1);
    }
    if (parameters.empty()) return std::nullopt;
    return parameters;
}

} // namespace zarn::host::web
