#pragma once

#include <optional>
#include <string_view>

namespace zarn::host::video {

/// The codings that streams are served in.
enum class Codec { H264, H265 };

/// What belongs to a coding: names in settings, caps and GStreamer elements.
struct CodecTraits {
    std::string_view name;       ///< in source texts
    std::string_view mediaType;  ///< in caps and in VideoInfo
    char const* parser;          ///< element that cuts the stream into access units
    char const* decoder;         ///< element that decodes it
    char const* payloader;       ///< element that makes RTP packets of it
    char const* encoder;         ///< element that encodes it
    char const* encoderSettings; ///< properties of the encoder, as in a launch line: no delay, little work
};

/// The row of a coding.
CodecTraits const& GetTraits(Codec codec);

/// The coding with a name of source texts.
std::optional<Codec> CodecFromName(std::string_view name);

/// The coding with a media type.
std::optional<Codec> CodecFromMediaType(std::string_view mediaType);

} // namespace zarn::host::video
