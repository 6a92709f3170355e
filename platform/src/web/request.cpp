#include <zarn/web/request.h>

#include <boost/beast/core/string.hpp>

#include <algorithm>

namespace zarn::web {

std::string_view Request::FindField(std::string_view name) const {
    auto const fields = GetFields();
    auto const found =
        std::ranges::find_if(fields, [name](auto const& field) { return boost::beast::iequals(field.first, name); });
    return found == fields.end() ? std::string_view() : found->second;
}

} // namespace zarn::web
