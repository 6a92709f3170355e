#include "host/web/router.h"

namespace zarn::host::web {

std::optional<std::string_view> MatchPath(std::string_view pattern, std::string_view path) {
    auto const star = pattern.find('*');
    auto const before = pattern.substr(0, star);
    if (!path.starts_with(before)) return std::nullopt;
    path.remove_prefix(before.size());
    std::string_view segment;
    std::string_view after;
    if (star != std::string_view::npos) {
        segment = path.substr(0, path.find('/'));
        if (segment.empty()) return std::nullopt;
        path.remove_prefix(segment.size());
        after = pattern.substr(star + 1);
    }
    bool const matches = pattern.ends_with('/') ? path.starts_with(after) : path == after;
    return matches ? std::optional(segment) : std::nullopt;
}

Router::Match Router::Find(std::string_view path) const {
    for (auto const& route : routes) {
        if (auto const segment = MatchPath(route.pattern, path)) return {route.handler.get(), *segment};
    }
    return {};
}

} // namespace zarn::host::web
