#include "host/web/router.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace zarn::host::web {
namespace {

/// Takes the first segment, without the "/" behind it, off a path.
std::string_view TakeSegment(std::string_view& path) {
    std::size_t const end = std::min(path.find('/'), path.size());
    std::string_view const segment = path.substr(0, end);
    path.remove_prefix(std::min(end + 1, path.size()));
    return segment;
}

} // namespace

bool Matches(std::string_view pattern, std::string_view path) {
    bool const below = pattern.ends_with('/');
    auto const slashes = [](std::string_view text) { return std::count(text.begin(), text.end(), '/'); };
    if (below ? slashes(path) < slashes(pattern) : slashes(path) != slashes(pattern)) return false;
    while (!pattern.empty()) {
        auto const wanted = TakeSegment(pattern);
        auto const segment = TakeSegment(path);
        if (wanted == "*" ? segment.empty() : wanted != segment) return false;
    }
    return below || path.empty();
}

Router::Router(std::vector<Route> routes) : routes(std::move(routes)) {}

std::shared_ptr<zarn::web::Service> Router::Find(std::string_view path) const {
    auto const found =
        std::find_if(routes.begin(), routes.end(), [&](Route const& route) { return Matches(route.pattern, path); });
    return found == routes.end() ? nullptr : found->service;
}

} // namespace zarn::host::web
