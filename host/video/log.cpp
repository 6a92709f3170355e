#include "host/video/log.h"

namespace zarn::host::video {

logging::Logger const& Log() {
    static logging::Logger const Logger("zarn.host.video");
    return Logger;
}

} // namespace zarn::host::video
