#pragma once

#include <zarn/web/service.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace zarn::host::web {

/// One row of the table of routes.
struct Route {
    /// A path. "*" stands for one segment that is not empty; a "/" at the end for everything below.
    std::string pattern;

    /// What answers.
    std::shared_ptr<zarn::web::Service> service;
};

/// True when the path is one that the pattern of a route describes.
bool Matches(std::string_view pattern, std::string_view path);

/// The table of routes: the first row that matches a path serves it. Thread: any.
class Router {
public:
    explicit Router(std::vector<Route> routes);

    /// The service for a path without query; null when there is none.
    std::shared_ptr<zarn::web::Service> Find(std::string_view path) const;

private:
    std::vector<Route> routes;
};

} // namespace zarn::host::web
