#include <zarn/meta/data/video_info.h>

#include <gtest/gtest.h>

namespace zarn::meta::data {
namespace {

TEST(VideoInfo, IsUnknownByDefault) {
    VideoInfo const info;
    EXPECT_EQ(info.GetResolution(), std::pair(0U, 0U));
    EXPECT_EQ(info.GetCodec(), "");
    EXPECT_EQ(info.GetFrameRateNumerator(), 0);
    EXPECT_EQ(info.GetFrameRateDenominator(), 1);
}

TEST(VideoInfo, ReturnsItsMembers) {
    VideoInfo const info({1920, 1080}, "video/x-h264", 30000, 1001);
    EXPECT_EQ(info.GetResolution(), std::pair(1920U, 1080U));
    EXPECT_EQ(info.GetCodec(), "video/x-h264");
    EXPECT_EQ(info.GetFrameRateNumerator(), 30000);
    EXPECT_EQ(info.GetFrameRateDenominator(), 1001);
}

TEST(VideoInfo, IsEqualOnlyInEveryMember) {
    VideoInfo const info({640, 480}, "a", 30, 1);
    EXPECT_EQ(info, VideoInfo({640, 480}, "a", 30, 1));
    EXPECT_NE(info, VideoInfo({641, 480}, "a", 30, 1));
    EXPECT_NE(info, VideoInfo({640, 481}, "a", 30, 1));
    EXPECT_NE(info, VideoInfo({640, 480}, "b", 30, 1));
    EXPECT_NE(info, VideoInfo({640, 480}, "a", 60, 1));
    EXPECT_NE(info, VideoInfo({640, 480}, "a", 30, 2));
}

} // namespace
} // namespace zarn::meta::data
