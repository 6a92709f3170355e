#pragma once

#include "host/web/handler.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zarn::host::web {

/// One row of the table of routes.
struct Route {
    /// A path. One "*" stands for a segment that is not empty; a "/" at the end for everything below.
    std::string pattern;

    /// What answers.
    std::shared_ptr<Handler> handler;
};

/// Compares a path with the pattern of a route. Returns the segment that the "*" stands for, empty when the pattern has
/// none, as a part of `path`; nothing when the path does not match.
std::optional<std::string_view> MatchPath(std::string_view pattern, std::string_view path);

/// The table of routes: the first row that matches a path serves it. Thread: any.
class Router {
public:
    /// What serves a path, as long as the router lives, and the segment that the "*" of its pattern stands for.
    struct Match {
        Handler* handler = nullptr;    ///< null: nothing serves the path
        std::string_view segment = {}; ///< a part of the path
    };

    explicit Router(std::vector<Route> routes) : routes(std::move(routes)) {}

    /// Finds the handler of a path without query.
    Match Find(std::string_view path) const;

private:
    std::vector<Route> routes;
};

} // namespace zarn::host::web
