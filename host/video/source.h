#pragma once

#include "host/video/codec.h"
#include "host/video/frame_rate.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace zarn::host::video {

/// Test video made by this program.
struct TestSource {
    std::string pattern;
    Codec codec = Codec::H264;
    std::uint32_t width = 640;
    std::uint32_t height = 480;
    FrameRate rate;

    bool operator==(TestSource const&) const = default;
};

/// A video file, played again and again.
struct FileSource {
    std::string path;

    bool operator==(FileSource const&) const = default;
};

/// Another RTSP server.
struct RtspSource {
    std::string url;

    bool operator==(RtspSource const&) const = default;
};

/// A camera of this machine.
struct DeviceSource {
    std::string device;

    bool operator==(DeviceSource const&) const = default;
};

using Source = std::variant<TestSource, FileSource, RtspSource, DeviceSource>;

/// A source, or what is wrong in its text.
struct ParsedSource {
    std::optional<Source> source;
    std::string error; ///< empty when there is a source
};

/// Reads the text of a source, see CheckSource(). An empty text is an error here.
/// Thread: any.
ParsedSource ParseSource(std::string_view text);

} // namespace zarn::host::video
