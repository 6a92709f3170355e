#pragma once

#include <optional>
#include <string_view>

namespace zarn::host::video {

/// The codecs that streams are served in.
enum class Codec { H264, H265 };

/// The names of a codec in settings, caps and GStreamer elements.
struct CodecTraits {
    std::string_view name;       ///< in source texts
    std::string_view mediaType;  ///< in caps and in VideoInfo
    char const* parser;          ///< element that cuts the stream into access units
    char const* decoder;         ///< element that decodes it
    char const* payloader;       ///< element that makes RTP packets of it
    char const* encoder;         ///< element that encodes it
    char const* encoderSettings; ///< properties of the encoder, as in a launch line: no delay, little work
};

/// The names of a codec.
CodecTraits const& GetTraits(Codec codec);

/// The codec with this name in the text of a source.
std::optional<Codec> CodecFromName(std::string_view name);

/// The codec with this media type.
std::optional<Codec> CodecFromMediaType(std::string_view mediaType);

} // namespace zarn::host::video
