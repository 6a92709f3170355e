#pragma once

#include "host/video/gstreamer.h"
#include "host/video/stream.h"

#include <gst/rtsp-server/rtsp-server.h>

#include <memory>

namespace zarn::host::video::rtsp {

/// Name of the permission role of the user `admin`.
inline constexpr char AdminRole[] = "admin";

/// Makes the factory of a channel's medias. Each viewer gets a media of its own, which begins at the newest key frame
/// that is kept; the coded pictures themselves are shared. A channel without video gives no media.
ObjectHandle<GstRTSPMediaFactory> MakeMediaFactory(std::shared_ptr<Stream> stream);

} // namespace zarn::host::video::rtsp
