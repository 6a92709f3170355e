#include "host/web/find_field.h"

#include <boost/beast/core/string.hpp>

#include <algorithm>

namespace zarn::host::web {

std::string_view FindField(std::map<std::string_view, std::string_view> const& fields, std::string_view name) {
    auto const found = std::find_if(fields.begin(), fields.end(),
                                    [name](auto const& field) { return boost::beast::iequals(field.first, name); });
    return found == fields.end() ? std::string_view() : found->second;
}

} // namespace zarn::host::web
