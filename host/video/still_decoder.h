#pragma once

#include "host/video/stream.h"

#include <zarn/container/buffer.h>

#include <chrono>
#include <memory>
#include <stop_token>
#include <string>

namespace zarn::host::video {

/// A JPEG file, or why there is none.
struct Still {
    std::shared_ptr<container::Buffer> jpeg;
    std::string failure; ///< for people; empty when there is a picture
};

/// Decodes a group of pictures up to its last and makes a JPEG file of that, of the size that the format tells.
/// deadline  when to give up
/// stop      gives up when a stop is requested
/// Thread: any; the work is done on the calling thread and a few of GStreamer's.
Still DecodeStill(Stream::Recent const& recent, std::chrono::steady_clock::time_point deadline,
                  std::stop_token const& stop);

} // namespace zarn::host::video
