#include "host/access/digest_parameters.h"

#include <boost/algorithm/string/case_conv.hpp>
#include <boost/algorithm/string/predicate.hpp>

#include <algorithm>
#include <cstddef>
#include <utility>

namespace zarn::host {
namespace {

constexpr std::string_view Scheme = "Digest ";
constexpr std::string_view Blanks = " \t";

void SkipBlanks(std::string_view& text) { text.remove_prefix(std::min(text.find_first_not_of(Blanks), text.size())); }

/// Removes the text before any of `ends` and returns it, without blanks at its end.
std::string ReadUntil(std::string_view& text, std::string_view ends) {
    std::size_t const end = std::min(text.find_first_of(ends), text.size());
    std::string_view read = text.substr(0, end);
    text.remove_prefix(end);
    read = read.substr(0, read.find_last_not_of(Blanks) + 1);
    return std::string(read);
}

/// Removes a quoted string and returns its content; nothing when it does not end.
std::optional<std::string> ReadQuoted(std::string_view& text) {
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

std::optional<DigestParameters> ParseDigestParameters(std::string_view field) {
    if (!boost::istarts_with(field, Scheme)) return std::nullopt;
    std::string_view rest = field.substr(Scheme.size());
    DigestParameters parameters;
    for (SkipBlanks(rest); !rest.empty(); SkipBlanks(rest)) {
        std::string name = boost::to_lower_copy(ReadUntil(rest, "=,\""));
        if (name.empty() || !rest.starts_with('=')) return std::nullopt;
        rest.remove_prefix(1);
        SkipBlanks(rest);
        auto value = rest.starts_with('"') ? ReadQuoted(rest) : ReadUntil(rest, ",");
        if (!value || !parameters.emplace(std::move(name), *std::move(value)).second) return std::nullopt;
        SkipBlanks(rest);
        if (rest.empty()) break;
        if (!rest.starts_with(',')) return std::nullopt;
        rest.remove_prefix(1);
    }
    if (parameters.empty()) return std::nullopt;
    return parameters;
}

std::string const& Find(DigestParameters const& parameters, std::string const& name) {
    static std::string const none;
    auto const found = parameters.find(name);
    return found == parameters.end() ? none : found->second;
}

} // namespace zarn::host
