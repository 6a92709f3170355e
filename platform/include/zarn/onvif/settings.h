#pragma once

#include <zarn/configuration/schema.h>

namespace zarn::onvif {

/// The settings by which the host and the ONVIF module meet, as paths in the host's configuration.

/// Whether the device can be discovered. Requests are served either way.
inline constexpr char EnabledPath[] = "settings.onvif.enabled";

/// The ports that addresses sent to clients contain.
inline constexpr char WebPortPath[] = "settings.web_port";
inline constexpr char RtspPortPath[] = "settings.rtsp_port";

/// Describes EnabledPath. The module does so itself; the host does before, because it reads its file before it makes
/// the module.
inline configuration::Schema DescribeEnabled() {
    return {EnabledPath, false, "The boolean denoting whether ONVIF is enabled for Zarnsuite"};
}

} // namespace zarn::onvif
