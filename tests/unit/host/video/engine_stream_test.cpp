#include "support/eventually.h"
#include "unit/host/video/video_test.h"

#include <gmock/gmock.h>

#include <chrono>

namespace zarn::host::video {
namespace {

using namespace std::chrono_literals;
using testing::HasSubstr;

constexpr char SmallH265[] = "test:ball?codec=h265&width=128&height=96&rate=10";

class EngineStream : public VideoTest {};

TEST_F(EngineStream, ServesTestVideoInItsSize) {
    engine->SetChannels({From("1", Small)});
    ASSERT_TRUE(WaitForState("1", ChannelState::Running));
    Viewer viewer(GetUrl("1"));
    auto const picture = viewer.Next();
    ASSERT_TRUE(picture) << viewer.GetFailure();
    EXPECT_EQ(picture->width, 128);
    EXPECT_EQ(picture->height, 96);
}

TEST_F(EngineStream, ServesH265) {
    engine->SetChannels({From("1", SmallH265)});
    ASSERT_TRUE(WaitForState("1", ChannelState::Running));
    Viewer viewer(GetUrl("1"));
    auto const picture = viewer.Next();
    ASSERT_TRUE(picture) << viewer.GetFailure();
    EXPECT_EQ(picture->width, 128);
    EXPECT_EQ(engine->Describe("1"), meta::data::VideoInfo({128, 96}, "video/x-h265", 10, 1));
}

TEST_F(EngineStream, ServesTheSmallestAndSlowestTestVideo) {
    engine->SetChannels({From("h264", "test:ball?width=64&height=64&rate=1"),
                         From("h265", "test:ball?codec=h265&width=64&height=66&rate=1")});
    for (auto const* id : {"h264", "h265"}) {
        ASSERT_TRUE(WaitForState(id, ChannelState::Running)) << GetStatus(id).detail;
        Viewer viewer(GetUrl(id));
        auto const picture = viewer.Next();
        ASSERT_TRUE(picture) << id << viewer.GetFailure();
        EXPECT_EQ(picture->width, 64);
        EXPECT_EQ(WaitForSnapshot(id).error, SnapshotError::None);
    }
}

TEST_F(EngineStream, ServesOverUdp) {
    engine->SetChannels({From("1", Small)});
    ASSERT_TRUE(WaitForState("1", ChannelState::Running));
    Viewer viewer(GetUrl("1"), {.transport = "udp"});
    EXPECT_TRUE(viewer.Next()) << viewer.GetFailure();
}

TEST_F(EngineStream, ContinuesInRealTime) {
    auto const begin = std::chrono::steady_clock::now();
    engine->SetChannels({From("1", Small)});
    ASSERT_TRUE(WaitForState("1", ChannelState::Running));
    Viewer viewer(GetUrl("1")); // buffered pictures arrive faster at first
    for (int count = 0; count < 20; ++count) ASSERT_TRUE(viewer.Next());
    EXPECT_GE(std::chrono::steady_clock::now() - begin, 1800ms);
}

TEST_F(EngineStream, ShowsEveryViewerItsFirstPictureSoon) {
    engine->SetChannels({From("1", Small)});
    ASSERT_TRUE(WaitForState("1", ChannelState::Running));
    Viewer first(GetUrl("1"));
    ASSERT_TRUE(first.Next());
    // Retries, because a busy machine may delay a viewer.
    EXPECT_TRUE(test::Eventually([this] {
        auto const begin = std::chrono::steady_clock::now();
        Viewer second(GetUrl("1"));
        EXPECT_TRUE(second.Next()) << second.GetFailure();
        return std::chrono::steady_clock::now() - begin < 2s;
    }));
}

TEST_F(EngineStream, AnswersNotFoundForAnUnknownPath) {
    engine->SetChannels({From("1", Small)});
    for (auto const* path : {"2", "1/more", ""}) {
        Viewer viewer(GetUrl(path));
        EXPECT_FALSE(viewer.Next()) << path;
        EXPECT_THAT(viewer.GetFailure(), HasSubstr("Not Found")) << path;
    }
}

TEST_F(EngineStream, AnswersNotFoundForADescribedChannel) {
    engine->SetChannels({From("1", "")});
    Viewer viewer(GetUrl("1"));
    EXPECT_FALSE(viewer.Next());
    EXPECT_THAT(viewer.GetFailure(), HasSubstr("Not Found"));
}

TEST_F(EngineStream, AnswersUnavailableWhileTheSourceFails) {
    engine->SetChannels({From("1", folder / "missing.mp4")});
    ASSERT_TRUE(WaitForState("1", ChannelState::Failed));
    Viewer viewer(GetUrl("1"));
    EXPECT_FALSE(viewer.Next());
    EXPECT_THAT(viewer.GetFailure(), HasSubstr("Service Unavailable"));
}

} // namespace
} // namespace zarn::host::video
