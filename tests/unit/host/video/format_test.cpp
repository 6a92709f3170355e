#include "host/video/format.h"
#include "host/video/gstreamer.h"

#include <gtest/gtest.h>

namespace zarn::host::video {
namespace {

std::optional<Format> Read(char const* text) {
    InitializeGStreamer();
    MiniHandle<GstCaps> const caps(gst_caps_from_string(text));
    return ReadFormat(caps.get());
}

TEST(Format, IsReadFromCaps) {
    auto const format = Read("video/x-h265,width=1920,height=1080,framerate=30000/1001");
    ASSERT_TRUE(format);
    EXPECT_EQ(format->codec, Codec::H265);
    EXPECT_EQ(format->width, 1920);
    EXPECT_EQ(format->height, 1080);
    EXPECT_EQ(format->rate, (FrameRate{30000, 1001}));
    EXPECT_NE(format->caps, nullptr);
}

TEST(Format, RequiresAKnownCodecAndASize) {
    for (auto const* text : {"video/x-h264", "video/x-h264,width=640", "video/x-h264,width=0,height=480", "EMPTY",
                             "ANY", "video/x-vp8,width=640,height=480"}) {
        EXPECT_FALSE(Read(text)) << text;
    }
    EXPECT_FALSE(ReadFormat(nullptr));
}

TEST(Format, UsesTheMeasuredRateOnlyWithoutADeclaredOne) {
    auto const silent = Read("video/x-h264,width=640,height=480,framerate=0/1");
    ASSERT_TRUE(silent);
    EXPECT_EQ(ToVideoInfo(*silent, FrameRate{15, 1}), meta::data::VideoInfo({640, 480}, "video/x-h264", 15, 1));
    EXPECT_EQ(ToVideoInfo(*silent, std::nullopt), meta::data::VideoInfo({640, 480}, "video/x-h264", 0, 1));
    auto const telling = Read("video/x-h264,width=640,height=480,framerate=25/1");
    EXPECT_EQ(ToVideoInfo(*telling, FrameRate{15, 1}), meta::data::VideoInfo({640, 480}, "video/x-h264", 25, 1));
}

TEST(Format, IsContinuedByTheSameCodecAndSize) {
    auto const format = *Read("video/x-h264,width=640,height=480,framerate=25/1");
    EXPECT_TRUE(format.Continues(*Read("video/x-h264,width=640,height=480,framerate=15/1")));
    EXPECT_FALSE(format.Continues(*Read("video/x-h264,width=640,height=360,framerate=25/1")));
    EXPECT_FALSE(format.Continues(*Read("video/x-h265,width=640,height=480,framerate=25/1")));
}

} // namespace
} // namespace zarn::host::video
