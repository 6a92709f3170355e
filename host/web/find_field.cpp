#include "host/web/find_field.h"

#include <boost/algorithm/string/predicate.hpp>

namespace zarn::host::web {

std::string_view FindField(zarn::web::Request const& request, std::string_view name) {
    for (auto const& [fieldName, value] : request.GetFields()) {
        if (boost::iequals(fieldName, name)) return value;
    }
    return {};
}

} // namespace zarn::host::web
