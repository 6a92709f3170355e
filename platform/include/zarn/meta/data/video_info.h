#pragma once

#include <cstdint>
#include <string>
#include <utility>

namespace zarn::meta::data {

/// What is known of the video of a channel. Any values may occur, also 0 and unknown codecs.
class VideoInfo {
public:
    /// No video known: 0 x 0, no codec, frame rate 0/1.
    VideoInfo() : VideoInfo({0, 0}, "", 0, 1) {}

    /// resolution  width and height in pixels
    /// codec       media type, for example "video/x-h264"
    /// numerator, denominator  frame rate in frames per second, for example 30000 and 1001
    VideoInfo(std::pair<std::uint32_t, std::uint32_t> resolution, std::string codec, std::int32_t numerator,
              std::int32_t denominator)
        : resolution(resolution), codec(std::move(codec)), numerator(numerator), denominator(denominator) {}

    /// Width and height in pixels.
    std::pair<std::uint32_t, std::uint32_t> GetResolution() const noexcept { return resolution; }

    /// The media type, for example "video/x-h264".
    std::string const& GetCodec() const noexcept { return codec; }

    /// The frame rate in frames per second is this number divided by GetFrameRateDenominator().
    std::int32_t GetFrameRateNumerator() const noexcept { return numerator; }

    /// See GetFrameRateNumerator.
    std::int32_t GetFrameRateDenominator() const noexcept { return denominator; }

    /// Equal in every member; frame rates are compared as written, so 30/1 is not 60/2.
    bool operator==(VideoInfo const&) const = default;

private:
    std::pair<std::uint32_t, std::uint32_t> resolution;
    std::string codec;
    std::int32_t numerator;
    std::int32_t denominator;
};

} // namespace zarn::meta::data
