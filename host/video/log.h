#pragma once

#include <zarn/logging/logger.h>

namespace zarn::host::video {

/// Where the video engine writes its log.
inline logging::Logger const& Log() {
    static logging::Logger const Logger("zarn.host.video");
    return Logger;
}

} // namespace zarn::host::video
