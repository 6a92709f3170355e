#include "host/web/request_target.h"

#include <boost/algorithm/string/predicate.hpp>

#include <cstddef>

namespace zarn::host::web {

std::optional<std::string> ToOriginForm(std::string_view target) {
    if (target.starts_with('/')) return std::string(target);
    for (std::string_view const scheme : {"http://", "https://"}) {
        if (!boost::istarts_with(target, scheme)) continue;
        std::string_view const rest = target.substr(scheme.size());
        std::size_t const end = rest.find_first_of("/?");
        if (end == 0 || rest.empty()) return std::nullopt;
        if (end == std::string_view::npos) return "/";
        std::string const path(rest.substr(end));
        return path.front() == '/' ? path : '/' + path;
    }
    return std::nullopt;
}

std::string_view GetPath(std::string_view target) { return target.substr(0, target.find('?')); }

} // namespace zarn::host::web
