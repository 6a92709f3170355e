#include "support/eventually.h"
#include "support/reserved_port.h"
#include "unit/host/video/video_test.h"

#include <zarn/authentication/ha1.h>
#include <zarn/authentication/realm.h>
#include <zarn/logging/capture.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <chrono>
#include <ostream>

namespace zarn::host::video {
namespace {

using namespace std::chrono_literals;
using meta::data::VideoInfo;
using testing::HasSubstr;

/// A one-second video file, and the engine's output for it.
struct Kind {
    std::string name;   ///< file name
    std::string coding; ///< launch line from raw video to the file format
    std::string codec;  ///< expected codec of the stream
};

std::ostream& operator<<(std::ostream& stream, Kind const& kind) { return stream << kind.name; }

class EngineFile : public VideoTest, public testing::WithParamInterface<Kind> {
protected:
    std::string MakeFile(Kind const& kind) const {
        auto const path = (folder / kind.name).string();
        EXPECT_TRUE(RunToEnd(
            "videotestsrc num-buffers=20 pattern=ball ! video/x-raw,format=I420,width=128,height=96,framerate=20/1 ! " +
            kind.coding + " ! filesink location=" + path));
        return path;
    }
};

TEST_P(EngineFile, LoopsInRealTime) {
    auto const file = MakeFile(GetParam());
    auto const begin = std::chrono::steady_clock::now();
    engine->SetChannels({From("1", file)});
    ASSERT_TRUE(WaitForState("1", ChannelState::Running)) << GetStatus("1").detail;
    EXPECT_TRUE(test::Eventually([&] {
        return engine->Describe("1") == VideoInfo({128, 96}, GetParam().codec, 20, 1);
    })) << engine->Describe("1").GetFrameRateNumerator();
    Viewer viewer(GetUrl("1"));
    // No gap at the end of the file. The engine drops pictures when the machine is too slow; then retry.
    auto gap = std::chrono::nanoseconds::max();
    test::Eventually(
        [&] {
            auto const first = viewer.Next();
            EXPECT_TRUE(first) << viewer.GetFailure();
            if (!first) return true;
            EXPECT_EQ(first->width, 128);
            gap = 0ms;
            for (auto last = *first; last.time - first->time < 2500ms;) {
                auto const next = viewer.Next();
                EXPECT_TRUE(next) << viewer.GetFailure();
                if (!next) return true;
                gap = std::max(gap, next->time - last.time);
                last = *next;
            }
            return gap <= 55ms;
        },
        25s);
    EXPECT_LE(gap, 55ms);
    EXPECT_GE(std::chrono::steady_clock::now() - begin, 2500ms); // the file was played in real time
    EXPECT_EQ(GetStatus("1").restarts, 0);
    EXPECT_EQ(WaitForSnapshot("1").error, SnapshotError::None);
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, EngineFile,
    testing::Values(Kind{"h264.mp4", "x264enc bframes=2 key-int-max=100 ! h264parse ! mp4mux", "video/x-h264"},
                    Kind{"h264.mkv", "x264enc bframes=2 ! h264parse ! matroskamux", "video/x-h264"},
                    Kind{"h264.ts", "x264enc tune=zerolatency ! h264parse ! mpegtsmux", "video/x-h264"},
                    Kind{"h265.mp4", "x265enc ! h265parse ! mp4mux", "video/x-h265"},
                    Kind{"h265.mkv", "x265enc ! h265parse ! matroskamux", "video/x-h265"},
                    Kind{"jpeg.avi", "jpegenc ! avimux", "video/x-h264"},
                    Kind{"vp8.webm", "vp8enc ! webmmux", "video/x-h264"}),
    [](auto const& tested) {
        auto name = tested.param.name;
        name[name.find('.')] = '_';
        return name;
    });

class EngineSource : public VideoTest {
protected:
    void MakeMovie(std::filesystem::path const& path) const {
        auto const made = folder / "made.mp4";
        ASSERT_TRUE(
            RunToEnd("videotestsrc num-buffers=20 ! video/x-raw,format=I420,width=128,height=96,framerate=20/1 ! "
                     "x264enc ! h264parse ! mp4mux ! filesink location=" +
                     made.string()));
        std::filesystem::rename(made, path);
    }
};

TEST_F(EngineSource, IsTriedAgainUntilItsFileAppears) {
    auto const path = folder / "late.mp4";
    engine->SetChannels({From("1", path), From("2", "test:ball?width=128&height=96&rate=10")});
    ASSERT_TRUE(WaitForState("1", ChannelState::Failed));
    MakeMovie(path);
    EXPECT_TRUE(WaitForState("1", ChannelState::Running));
    EXPECT_GE(GetStatus("1").restarts, 1);
    EXPECT_EQ(GetStatus("2").restarts, 0);
    EXPECT_EQ(GetStatus("1").detail, "");
}

TEST_F(EngineSource, FailsWhenAFileHoldsNoVideo) {
    auto const sound = (folder / "sound.wav").string();
    ASSERT_TRUE(RunToEnd("audiotestsrc num-buffers=10 ! wavenc ! filesink location=" + sound));
    engine->SetChannels({From("1", sound), From("2", folder)});
    EXPECT_NE(AwaitFailure("1"), "");
    EXPECT_NE(AwaitFailure("2"), "");
}

TEST_F(EngineSource, FailsWhenADeviceIsMissing) {
    logging::Capture const log;
    engine->SetChannels({From("1", "v4l2:/dev/video99")});
    EXPECT_EQ(AwaitFailure("1"), "the source is not there");
    EXPECT_TRUE(log.Contains("/dev/video99"));
}

TEST_F(EngineSource, IsLoggedOnceForEachChange) {
    logging::Capture const capture;
    auto const path = folder / "late.mp4";
    engine->SetChannels({From("gate", path)});
    ASSERT_TRUE(test::Eventually([&] { return GetStatus("gate").restarts > 0; }));
    MakeMovie(path);
    ASSERT_TRUE(WaitForState("gate", ChannelState::Running));
    std::vector<std::string> lines;
    for (auto const& line : capture.GetLines()) {
        if (line.text.starts_with("channel gate")) lines.push_back(line.text);
    }
    EXPECT_THAT(lines,
                testing::ElementsAre(HasSubstr("late.mp4 failed"), HasSubstr("running, video/x-h264 128x96 20/1")));
}

/// A second engine serves as the camera.
class EngineCamera : public VideoTest {
protected:
    /// Starts the camera, always on the same port.
    void StartCamera(std::string const& source) {
        camera = std::make_unique<Engine>(
            RtspSettings{port.Get(), true, authentication::MakeHa1("admin", authentication::Realm, "secret")});
        camera->SetChannels({From("1", source)});
        ASSERT_TRUE(test::Eventually([&] { return camera->GetStatus().front().state == ChannelState::Running; }));
    }

    /// The source setting for the camera.
    ChannelSettings FromCamera(std::string const& password = "secret") const {
        auto settings = From("1", "rtsp://127.0.0.1:" + std::to_string(camera->GetPort()) + "/channels/1");
        settings.user = "admin";
        settings.password = password;
        return settings;
    }

    test::ReservedPort const port;
    std::unique_ptr<Engine> camera;
};

TEST_F(EngineCamera, IsRelayed) {
    StartCamera(Small);
    engine->SetChannels({FromCamera()});
    ASSERT_TRUE(WaitForState("1", ChannelState::Running)) << GetStatus("1").detail;
    EXPECT_TRUE(test::Eventually([&] { return engine->Describe("1") == VideoInfo({128, 96}, "video/x-h264", 10, 1); }));
    Viewer viewer(GetUrl("1"));
    EXPECT_TRUE(viewer.Next()) << viewer.GetFailure();
    EXPECT_EQ(WaitForSnapshot("1").error, SnapshotError::None);
}

TEST_F(EngineCamera, IsRelayedInH265) {
    StartCamera("test:ball?codec=h265&width=128&height=96&rate=10");
    engine->SetChannels({FromCamera()});
    EXPECT_TRUE(test::Eventually([&] { return engine->Describe("1") == VideoInfo({128, 96}, "video/x-h265", 10, 1); }));
}

TEST_F(EngineCamera, RequiresTheRightPasswordAndNeverLogsIt) {
    logging::Capture const capture;
    StartCamera(Small);
    engine->SetChannels({FromCamera("a-wrong-one")});
    EXPECT_EQ(AwaitFailure("1"), "the source refuses the user or password");
    EXPECT_TRUE(capture.Contains("Unauthorized"));
    EXPECT_TRUE(capture.Contains("channel 1: source rtsp://127.0.0.1"));
    EXPECT_FALSE(capture.Contains("a-wrong-one"));
}

TEST_F(EngineCamera, RecoversWithoutInterruptingViewers) {
    StartCamera(Small);
    auto const settings = FromCamera();
    engine->SetChannels({settings});
    ASSERT_TRUE(WaitForState("1", ChannelState::Running));
    Viewer viewer(GetUrl("1"));
    ASSERT_TRUE(viewer.Next());
    camera.reset();
    ASSERT_TRUE(WaitForState("1", ChannelState::Failed));
    StartCamera(Small);
    ASSERT_TRUE(WaitForState("1", ChannelState::Running));
    for (int count = 0; count < 15; ++count) ASSERT_TRUE(viewer.Next()) << viewer.GetFailure();
}

TEST_F(EngineCamera, MayStartLater) {
    StartCamera(Small);
    auto const settings = FromCamera();
    camera.reset();
    engine->SetChannels({settings});
    ASSERT_TRUE(WaitForState("1", ChannelState::Failed));
    StartCamera(Small);
    EXPECT_TRUE(WaitForState("1", ChannelState::Running));
}

TEST_F(EngineCamera, EndsStreamsWhenItsResolutionChanges) {
    StartCamera(Small);
    engine->SetChannels({FromCamera()});
    ASSERT_TRUE(WaitForState("1", ChannelState::Running));
    Viewer viewer(GetUrl("1"));
    ASSERT_TRUE(viewer.Next());
    camera->SetChannels({From("1", "test:ball?width=192&height=112&rate=10")});
    EXPECT_TRUE(test::Eventually([&] { return !viewer.Next(50ms) && viewer.HasEnded(); }));
    EXPECT_TRUE(test::Eventually([&] { return engine->Describe("1").GetResolution() == std::pair(192U, 112U); }));
    Viewer next(GetUrl("1"));
    auto const picture = next.Next();
    ASSERT_TRUE(picture) << next.GetFailure();
    EXPECT_EQ(picture->width, 192);
}

} // namespace
} // namespace zarn::host::video
