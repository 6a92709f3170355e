#include "host/video/rtsp_settings.h"

#include <zarn/onvif/settings.h>

namespace zarn::host::video {

std::vector<configuration::Schema> MakeRtspSchemas() {
    return {{zarn::onvif::RtspPortPath,
             std::uint16_t{8554},
             "TCP port of the RTSP server",
             {},
             configuration::schema::Port()}};
}

} // namespace zarn::host::video
