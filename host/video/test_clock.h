#pragma once

#include <gst/gst.h>

namespace zarn::host::video {

/// Draws the local time of day into every I420 picture that passes the pad, so that test video moves whatever its
/// pattern.
void AttachClock(GstPad* pad);

} // namespace zarn::host::video
