#include "host/video/pipeline_text.h"

#include <algorithm>
#include <sstream>

namespace zarn::host::video {
namespace {

std::string ToText(FrameRate const& rate) {
    return std::to_string(rate.numerator) + "/" + std::to_string(rate.denominator);
}

double PixelRate(EncoderInput const& input) {
    return static_cast<double>(input.width) * input.height * input.rate.numerator / input.rate.denominator;
}

/// About a twelfth of a bit per pixel, as network cameras do.
int ChooseKilobits(EncoderInput const& input) {
    constexpr double BitsPerPixel = 0.08;
    return static_cast<int>(std::clamp(PixelRate(input) * BitsPerPixel / 1000, 128.0, 12'000.0));
}

/// One encoder thread for what one can do in real time: channels are many, and more threads mean more slices.
int ChooseThreads(EncoderInput const& input) {
    constexpr double PixelsPerThread = 1920.0 * 1080 * 30;
    return static_cast<int>(std::clamp(1 + PixelRate(input) / PixelsPerThread, 1.0, 4.0));
}

std::string ThreadSettings(Codec codec, int threads) {
    auto const count = std::to_string(threads);
    if (codec == Codec::H264) return " threads=" + count;
    return " option-string=\"pools=" + count + ":frame-threads=1\"";
}

} // namespace

std::string MakeParserText(Codec codec) {
    auto const& traits = GetTraits(codec);
    return std::string(traits.parser) + " config-interval=-1 ! " + std::string(traits.mediaType) +
           ",stream-format=byte-stream,alignment=au ! appsink name=" + SinkName +
           " sync=false async=false max-buffers=16";
}

std::string MakeEncoderText(Codec codec, EncoderInput const& input) {
    auto const& traits = GetTraits(codec);
    auto const keyInterval = std::max(1, input.rate.numerator / input.rate.denominator);
    std::ostringstream text;
    if (input.isLive) text << "queue leaky=downstream max-size-buffers=4 max-size-bytes=0 max-size-time=0 ! ";
    // Live pictures are never doubled to fill gaps: an encoder that is too slow would fall behind more and more.
    text << (input.isLive ? "videorate drop-only=true" : "videorate")
         << " ! videoconvert ! videoscale ! video/x-raw,format=I420,width=[2,16384,2],height=[2,16384,2],framerate="
         << ToText(input.rate) << " ! " << traits.encoder << " " << traits.encoderSettings
         << " bitrate=" << ChooseKilobits(input) << " key-int-max=" << keyInterval
         << ThreadSettings(codec, ChooseThreads(input)) << " ! " << MakeParserText(codec);
    return text.str();
}

std::string MakeTestText(TestEncoding const& test) {
    return "capsfilter caps=video/x-raw,format=I420,width=" + std::to_string(test.width) +
           ",height=" + std::to_string(test.height) + ",framerate=" + ToText(test.rate) + " ! " +
           MakeEncoderText(test.codec, {test.width, test.height, test.rate, true});
}

std::string MakeDecoderText(Codec codec) {
    auto const& traits = GetTraits(codec);
    return std::string("appsrc name=") + FeedName + " format=time max-bytes=0 ! " + traits.parser + " ! " +
           traits.decoder + " max-threads=2 ! appsink name=" + SinkName + " sync=false max-buffers=1 drop=true";
}

std::string MakeJpegText(std::uint32_t width, std::uint32_t height) {
    std::ostringstream text;
    // JPEG files use the full range of brightness (colorimetry 1:4:0:0), video mostly does not. The way leads over RGB
    // since videoconvert leaves the range alone between formats that differ in nothing else.
    text << "appsrc name=" << FeedName
         << " format=time ! videoconvert ! videoscale ! video/x-raw,format=RGBx,width=" << width << ",height=" << height
         << " ! videoconvert ! video/x-raw,format=I420,colorimetry=1:4:0:0 ! jpegenc quality=85 ! "
         << "appsink name=" << SinkName << " sync=false";
    return text.str();
}

} // namespace zarn::host::video
