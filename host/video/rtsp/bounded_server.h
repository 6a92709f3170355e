#pragma once

#include "host/video/handle.h"

#include <gst/rtsp-server/rtsp-server.h>

#include <functional>

namespace zarn::host::video::rtsp {

/// Makes a server that asks before it takes a connection; one that is not wanted is closed at once.
/// isWanted  called on the thread that the server is attached to
ObjectHandle<GstRTSPServer> MakeBoundedServer(std::function<bool()> isWanted);

} // namespace zarn::host::video::rtsp
