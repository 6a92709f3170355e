#include "configuration/node/location.h"

#include "configuration/schema/quote.h"

#include <zarn/configuration/error.h>
#include <zarn/text/character.h>

#include <algorithm>

namespace zarn::configuration::node {

namespace {

constexpr std::size_t MaximumKeyLength = 64;

constexpr bool IsKeyCharacter(char character) noexcept {
    return text::IsAlphanumeric(character) || character == '-' || character == '_';
}

} // namespace

bool IsKey(std::string_view text) noexcept {
    return !text.empty() && text.size() <= MaximumKeyLength && std::all_of(text.begin(), text.end(), IsKeyCharacter);
}

void RequireKey(std::string_view text, std::string const& path) {
    if (IsKey(text)) return;
    throw Error(path, schema::Quote(text) + " is not a key (1 to 64 letters, digits, '-' and '_')");
}

std::string JoinPath(std::string_view path, std::string_view key) {
    std::string joined(path);
    if (!joined.empty()) joined += '.';
    return joined += key;
}

std::vector<std::string_view> SplitPath(std::string_view path) {
    std::vector<std::string_view> parts;
    for (std::size_t dot = path.find('.'); dot != std::string_view::npos; dot = path.find('.')) {
        parts.push_back(path.substr(0, dot));
        path.remove_prefix(dot + 1);
    }
    parts.push_back(path);
    return parts;
}

} // namespace zarn::configuration::node
