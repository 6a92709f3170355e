#pragma once

#include <zarn/onvif/filled.h>

namespace zarn::service::onvif {

using zarn::onvif::Append;
using zarn::onvif::Filled;

} // namespace zarn::service::onvif
