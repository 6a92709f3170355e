#pragma once

#include <zarn/web/request.h>

#include <string_view>

namespace zarn::host::web {

/// The value of a header field, its name compared without case; empty when there is none. Valid as long as the request.
std::string_view FindField(zarn::web::Request const& request, std::string_view name);

} // namespace zarn::host::web
