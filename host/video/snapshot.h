#pragma once

#include <zarn/container/buffer.h>

#include <memory>
#include <string>

namespace zarn::host::video {

/// Why there is no picture.
enum class SnapshotError {
    None,          ///< There is one.
    NoSuchChannel, ///< No channel has this identifier.
    NoFrame,       ///< The channel has no video, or none that is new enough.
    Busy,          ///< Too many snapshots are being made; try again.
    Failed,        ///< The video could not be decoded, or not in time.
    Stopped        ///< The engine stops.
};

/// A still image of a channel, or the reason why there is none.
struct Snapshot {
    /// None when `jpeg` holds a picture.
    SnapshotError error = SnapshotError::None;

    /// The reason for people; empty when there is a picture.
    std::string detail;

    /// A whole JPEG file of exactly the channel's size, not older than two seconds; null when there is an error. It may
    /// be shared with other requests: read only.
    std::shared_ptr<container::Buffer> jpeg;
};

} // namespace zarn::host::video
