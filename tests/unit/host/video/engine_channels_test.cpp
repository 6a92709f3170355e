#include "support/eventually.h"
#include "support/thread_failure.h"
#include "unit/host/video/video_test.h"

#include <zarn/logging/capture.h>

#include <gmock/gmock.h>

#include <atomic>
#include <stdexcept>
#include <thread>

namespace zarn::host::video {
namespace {

using namespace std::chrono_literals;
using meta::data::VideoInfo;
using testing::HasSubstr;

constexpr char Other[] = "test:smpte?width=192&height=112&rate=5";

class EngineChannels : public VideoTest {
protected:
    std::vector<std::string> GetIds() const {
        std::vector<std::string> ids;
        for (auto const& status : engine->GetStatus()) ids.push_back(status.id);
        return ids;
    }
};

ChannelSettings Described(std::string id, VideoInfo info) { return {std::move(id), "", "", "", std::move(info)}; }

TEST_F(EngineChannels, AreNoneAtFirst) {
    EXPECT_TRUE(engine->GetStatus().empty());
    EXPECT_EQ(engine->Describe("1"), VideoInfo());
}

TEST_F(EngineChannels, KeepTheirOrder) {
    engine->SetChannels({From("b", ""), From("a", ""), From("c", "")});
    EXPECT_THAT(GetIds(), testing::ElementsAre("b", "a", "c"));
}

TEST_F(EngineChannels, WithoutASourceAreOnlyDescribed) {
    VideoInfo const odd({0, 7}, "odd codec", -1, 0);
    engine->SetChannels({Described("1", odd)});
    EXPECT_EQ(engine->Describe("1"), odd);
    EXPECT_EQ(GetStatus("1").state, ChannelState::Described);
    EXPECT_EQ(GetStatus("1").frameAge, std::nullopt);
}

TEST_F(EngineChannels, ReportTheDescriptionUntilTheVideoIsKnown) {
    auto settings = From("1", folder / "missing.mp4");
    settings.described = VideoInfo({1920, 1080}, "video/x-h264", 30, 1);
    engine->SetChannels({settings});
    EXPECT_EQ(engine->Describe("1"), settings.described);
}

TEST_F(EngineChannels, ReportTheActualFormatOfTheVideo) {
    auto settings = From("1", "test:ball?width=128&height=96&rate=15000/1001");
    settings.described = VideoInfo({1920, 1080}, "video/x-h265", 30, 1);
    engine->SetChannels({settings});
    EXPECT_TRUE(test::Eventually([&] {
        return engine->Describe("1") == VideoInfo({128, 96}, "video/x-h264", 15000, 1001);
    }));
}

TEST_F(EngineChannels, ReportTheAgeOfTheNewestFrame) {
    engine->SetChannels({From("1", Small)});
    ASSERT_TRUE(WaitForState("1", ChannelState::Running));
    // Frames arrive ten times a second, so eventually one is observed soon after its arrival.
    EXPECT_TRUE(test::Eventually([&] { return GetStatus("1").frameAge.value() < 100ms; }));
}

TEST_F(EngineChannels, ReportWhyASourceFailsAndLogItsPath) {
    logging::Capture const log;
    engine->SetChannels({From("1", folder / "missing.mp4")});
    EXPECT_EQ(AwaitFailure("1"), "the source is not there");
    EXPECT_TRUE(log.Contains("missing.mp4"));
}

TEST_F(EngineChannels, FailForGoodWhenTheirSourceIsWrong) {
    logging::Capture const log;
    engine->SetChannels({From("1", "test:none"), From("2", Small)});
    EXPECT_EQ(GetStatus("1").state, ChannelState::Failed);
    EXPECT_EQ(GetStatus("1").detail, "the source is not understood");
    EXPECT_TRUE(log.Contains("unknown pattern \"none\""));
    EXPECT_TRUE(WaitForState("2", ChannelState::Running));
}

TEST_F(EngineChannels, MustNotShareAnIdentifier) {
    engine->SetChannels({From("1", "")});
    EXPECT_THROW(engine->SetChannels({From("2", ""), From("2", "")}), std::invalid_argument);
    EXPECT_THAT(GetIds(), testing::ElementsAre("1"));
}

TEST_F(EngineChannels, ContinueWhenOthersChange) {
    engine->SetChannels({From("1", Small), From("2", Small), From("3", Small)});
    ASSERT_TRUE(WaitForState("1", ChannelState::Running));
    Viewer viewer(GetUrl("1"));
    ASSERT_TRUE(viewer.Next());
    auto settings = From("1", Small);
    settings.described = VideoInfo({1, 1}, "", 1, 1);
    engine->SetChannels({From("4", Small), settings, From("2", Other)});
    EXPECT_THAT(GetIds(), testing::ElementsAre("4", "1", "2"));
    EXPECT_EQ(GetStatus("1").state, ChannelState::Running);
    for (int count = 0; count < 15; ++count) ASSERT_TRUE(viewer.Next()) << viewer.GetFailure();
    EXPECT_EQ(engine->Describe("1").GetResolution(), std::pair(128U, 96U));
    EXPECT_TRUE(test::Eventually([&] { return engine->Describe("2").GetResolution() == std::pair(192U, 112U); }));
    EXPECT_TRUE(WaitForState("4", ChannelState::Running));
}

TEST_F(EngineChannels, EndTheirStreamsWhenRemoved) {
    engine->SetChannels({From("1", Small), From("2", Small)});
    for (auto const* transport : {"tcp", "udp"}) {
        engine->SetChannels({From("1", Small), From("2", Small)});
        ASSERT_TRUE(WaitForState("1", ChannelState::Running));
        Viewer viewer(GetUrl("1"), {.transport = transport});
        ASSERT_TRUE(viewer.Next());
        engine->SetChannels({From("2", Small)});
        EXPECT_TRUE(test::Eventually([&] { return !viewer.Next(50ms) && viewer.HasEnded(); })) << transport;
        Viewer late(GetUrl("1"), {.transport = transport});
        EXPECT_FALSE(late.Next());
        EXPECT_THAT(late.GetFailure(), HasSubstr("Not Found"));
    }
}

TEST_F(EngineChannels, ServeTheNewSourceAfterAChange) {
    engine->SetChannels({From("1", Small)});
    ASSERT_TRUE(WaitForState("1", ChannelState::Running));
    engine->SetChannels({From("1", Other)});
    ASSERT_TRUE(WaitForState("1", ChannelState::Running));
    Viewer viewer(GetUrl("1"));
    auto const picture = viewer.Next();
    ASSERT_TRUE(picture) << viewer.GetFailure();
    EXPECT_EQ(picture->width, 192);
}

TEST_F(EngineChannels, AreListedWithoutAGapWhileTheyChange) {
    engine->SetChannels({From("1", Small), From("2", "")});
    std::atomic<bool> isComplete = true;
    std::jthread const asking([&](std::stop_token const& stop) {
        while (!stop.stop_requested()) {
            if (GetIds() != std::vector<std::string>{"1", "2"}) isComplete = false;
        }
    });
    for (auto const* source : {Other, Small, "", Other}) engine->SetChannels({From("1", source), From("2", "")});
    EXPECT_TRUE(isComplete);
}

TEST_F(EngineChannels, SupportConcurrentChangesAndQueries) {
    std::jthread const asking([this](std::stop_token const& stop) {
        while (!stop.stop_requested()) {
            engine->GetStatus();
            engine->Describe("1");
            engine->RequestSnapshot("1", [](Snapshot const&) {});
        }
    });
    for (int round = 0; round < 5; ++round) {
        engine->SetChannels({From("1", Small)});
        engine->SetChannels({From("1", Other), From("2", "")});
    }
    EXPECT_TRUE(WaitForState("1", ChannelState::Running));
}

TEST_F(EngineChannels, FailWithoutAThreadAndDoNotAffectOthers) {
    engine->SetChannels({From("1", Small), From("2", Small)});
    ASSERT_TRUE(WaitForState("1", ChannelState::Running));
    {
        test::ThreadFailure const failure;
        engine->SetChannels({From("3", Other), From("1", Small), From("2", Other)});
    }
    EXPECT_THAT(GetIds(), testing::ElementsAre("3", "1", "2"));
    EXPECT_EQ(GetStatus("1").state, ChannelState::Running);
    for (auto const* id : {"2", "3"}) {
        EXPECT_EQ(GetStatus(id).state, ChannelState::Failed);
        EXPECT_EQ(GetStatus(id).detail, "there is no thread for the source");
    }
    engine->SetChannels({From("3", Other), From("1", Small), From("2", Other)});
    EXPECT_TRUE(WaitForState("2", ChannelState::Running));
    EXPECT_TRUE(WaitForState("3", ChannelState::Running));
}

TEST_F(EngineChannels, AreIgnoredAfterStopping) {
    engine->Stop();
    engine->SetChannels({From("1", Small)});
    EXPECT_TRUE(engine->GetStatus().empty());
}

} // namespace
} // namespace zarn::host::video
