#pragma once

#include <zarn/logging/logger.h>

namespace zarn::host::video {

/// Where the video engine writes its log.
logging::Logger const& Log();

} // namespace zarn::host::video
