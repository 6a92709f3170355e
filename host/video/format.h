#pragma once

#include "host/video/codec.h"
#include "host/video/gstreamer.h"
#include "host/video/source.h"

#include <zarn/meta/data/video_info.h>

#include <cstdint>
#include <memory>
#include <optional>

namespace zarn::host::video {

/// What a coded stream is.
struct Format {
    Codec codec = Codec::H264;
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::optional<FrameRate> rate; ///< none when the stream does not tell
    std::shared_ptr<GstCaps> caps; ///< the whole description, for decoders and payloaders

    /// Whether a viewer of one format can go on with the other.
    bool Continues(Format const& other) const {
        return codec == other.codec && width == other.width && height == other.height;
    }
};

/// Reads the caps of a parsed H.264 or H.265 stream; none when they are of something else or carry no size.
std::optional<Format> ReadFormat(GstCaps* caps);

/// The description for the ONVIF services; `measured` replaces a rate that the stream does not tell.
meta::data::VideoInfo ToVideoInfo(Format const& format, std::optional<FrameRate> measured);

} // namespace zarn::host::video
