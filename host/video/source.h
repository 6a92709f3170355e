#pragma once

#include "host/video/codec.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zarn::host::video {

/// Frames per second as a fraction.
struct FrameRate {
    std::int32_t numerator = 25;
    std::int32_t denominator = 1;

    bool operator==(FrameRate const&) const = default;
};

/// Reads a frame rate, "25" or "30000/1001": numerator and denominator, each 0 to 2147483647, as written, whether they
/// make sense or not. None when the text is something else. Thread: any.
std::optional<FrameRate> ParseFrameRate(std::string_view text);

/// How test pictures are encoded.
struct TestEncoding {
    Codec codec = Codec::H264;
    std::uint32_t width = 640;
    std::uint32_t height = 480;
    FrameRate rate;

    bool operator==(TestEncoding const&) const = default;
};

/// Where video comes from, as GStreamer opens it.
struct Source {
    struct Property {
        std::string name;
        std::string value;

        bool operator==(Property const&) const = default;
    };

    std::string element;              ///< GStreamer's
    std::vector<Property> properties; ///< of the element
    bool isLive = true;               ///< else read as fast as asked for, and played again at its end
    bool isRemote = false;            ///< takes user, password and transport; its streams show up one by one
    std::optional<TestEncoding> test; ///< of raw pictures; none: the video is passed through if it is coded

    bool operator==(Source const&) const = default;
};

/// A source, or what is wrong in its text.
struct ParsedSource {
    std::optional<Source> source;
    std::string error; ///< empty when there is a source
};

/// The forms that the text of a source can have, for messages.
inline constexpr char SourceForms[] = "test:PATTERN, rtsp://HOST/PATH, v4l2:/dev/videoN or the path of a file";

/// Reads the text of a source:
/// - `test:PATTERN[?codec=h264|h265&width=W&height=H&rate=R]`: moving test video; PATTERN is one of GStreamer's
///   `videotestsrc` patterns by name, W and H even numbers of pixels, R frames per second as `25` or `30000/1001`;
/// - `rtsp://HOST[:PORT]/PATH`, `rtsps://...`: another RTSP server, without credentials in the text;
/// - `v4l2:/dev/videoN`: a camera of this machine;
/// - anything else: the path of a video file.
/// Does not check whether the file, host or camera exists. An empty text is an error. Thread: any.
ParsedSource ParseSource(std::string_view text);

/// What ParseSource finds wrong, naming part, value and rule. None for an empty text: such a channel is only described.
/// Thread: any.
std::optional<std::string> CheckSource(std::string_view text);

/// The text of a source as it may be shown: an address without what is before "@" and after "?", where people put
/// credentials although they have members of their own. Any text will do. Thread: any.
std::string WithoutSecrets(std::string_view text);

/// The patterns of GStreamer's `videotestsrc` by name. Listed here so that a configuration can be checked without
/// starting GStreamer.
std::span<std::string_view const> GetTestPatterns();

} // namespace zarn::host::video
