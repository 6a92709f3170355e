#pragma once

#include "host/video/codec.h"
#include "host/video/source.h"

#include <cstdint>
#include <string>

namespace zarn::host::video {

/// Name of the application sink at the end of every tail.
inline constexpr char SinkName[] = "zarn-sink";

/// Name of the application source at the beginning of what is fed by this program.
inline constexpr char FeedName[] = "zarn-feed";

/// What is to be encoded.
struct EncoderInput {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    FrameRate rate;
    bool isLive = true; ///< pictures that are too many are dropped, not waited for
};

/// Launch line of what comes after a coded stream: whole access units as a byte stream, parameter sets in every key
/// frame.
std::string MakeParserText(Codec codec);

/// Launch line of what comes after raw pictures: encoder without delay, a key frame every second, then the parser.
std::string MakeEncoderText(Codec codec, EncoderInput const& input);

/// Launch line behind test pictures: their size and rate, then the encoder.
std::string MakeTestText(TestEncoding const& test);

/// Launch line that decodes access units.
std::string MakeDecoderText(Codec codec);

/// Launch line that turns a raw picture into a JPEG file of this size.
std::string MakeJpegText(std::uint32_t width, std::uint32_t height);

} // namespace zarn::host::video
