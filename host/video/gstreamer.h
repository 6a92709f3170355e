#pragma once

namespace zarn::host::video {

/// Makes GStreamer ready for use in this process; the first call does it. Fatal signals stay the program's own.
/// Throws std::runtime_error when GStreamer cannot be started. Thread: any.
void InitializeGStreamer();

} // namespace zarn::host::video
