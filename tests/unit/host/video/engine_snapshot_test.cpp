#include "support/eventually.h"
#include "unit/host/video/video_test.h"

#include <atomic>
#include <cstdlib>

namespace zarn::host::video {
namespace {

using namespace std::chrono_literals;

class EngineSnapshot : public VideoTest {
protected:
    /// Number of pixels that differ clearly between two pictures.
    static int CountDifferences(Picture const& one, Picture const& other) {
        int count = 0;
        for (std::size_t index = 0; index < one.brightness.size(); ++index) {
            auto const difference =
                static_cast<std::uint8_t>(one.brightness[index]) - static_cast<std::uint8_t>(other.brightness[index]);
            if (std::abs(difference) > 60) ++count;
        }
        return count;
    }
};

TEST_F(EngineSnapshot, HasTheSizeOfTheChannel) {
    engine->SetChannels({From("h264", "test:ball?width=200&height=120&rate=10"),
                         From("h265", "test:ball?codec=h265&width=128&height=96&rate=10")});
    auto const h264 = WaitForSnapshot("h264");
    ASSERT_EQ(h264.error, SnapshotError::None) << h264.detail;
    auto const picture = DecodeJpeg(h264.jpeg->ToStringView());
    ASSERT_TRUE(picture);
    EXPECT_EQ(picture->width, 200);
    EXPECT_EQ(picture->height, 120);
    auto const h265 = WaitForSnapshot("h265");
    ASSERT_EQ(h265.error, SnapshotError::None) << h265.detail;
    EXPECT_EQ(DecodeJpeg(h265.jpeg->ToStringView())->width, 128);
}

TEST_F(EngineSnapshot, ChangesOverTime) {
    engine->SetChannels({From("1", "test:ball?width=128&height=96&rate=10")});
    auto const first = DecodeJpeg(WaitForSnapshot("1").jpeg->ToStringView());
    ASSERT_TRUE(test::Eventually([&] {
        auto const later = DecodeJpeg(WaitForSnapshot("1").jpeg->ToStringView());
        return CountDifferences(*first, *later) > 20;
    }));
}

TEST_F(EngineSnapshot, UsesTheFullRangeOfBrightness) {
    engine->SetChannels({From("white", "test:white?width=128&height=96&rate=10"),
                         From("black", "test:black?width=128&height=96&rate=10")});
    auto const white = DecodeJpeg(WaitForSnapshot("white").jpeg->ToStringView());
    auto const black = DecodeJpeg(WaitForSnapshot("black").jpeg->ToStringView());
    EXPECT_GE(static_cast<std::uint8_t>(white->brightness.back()), 250);
    EXPECT_LE(static_cast<std::uint8_t>(black->brightness.back()), 5);
}

TEST_F(EngineSnapshot, SharesOnePictureBetweenRequestsAtTheSameTime) {
    engine->SetChannels({From("1", "test:ball?width=128&height=96&rate=10")});
    // Retries, because on a stalled machine the picture may become too old to be shared.
    EXPECT_TRUE(test::Eventually([&] {
        auto const one = WaitForSnapshot("1");
        auto const other = TakeSnapshot("1");
        return other.error == SnapshotError::None && one.jpeg == other.jpeg;
    }));
}

TEST_F(EngineSnapshot, AnswersManyRequestsEachOnce) {
    engine->SetChannels({From("1", "test:ball?width=128&height=96&rate=10")});
    ASSERT_TRUE(WaitForState("1", ChannelState::Running));
    std::atomic<int> answers = 0;
    for (int count = 0; count < 200; ++count) {
        engine->RequestSnapshot("1", [&answers](Snapshot const&) { ++answers; });
    }
    EXPECT_TRUE(test::Eventually([&] { return answers == 200; }));
}

TEST_F(EngineSnapshot, ReportsNoSuchChannel) { EXPECT_EQ(TakeSnapshot("1").error, SnapshotError::NoSuchChannel); }

TEST_F(EngineSnapshot, ReportsNoFrameForADescribedChannel) {
    engine->SetChannels({From("1", "")});
    EXPECT_EQ(TakeSnapshot("1").error, SnapshotError::NoFrame);
}

TEST_F(EngineSnapshot, ReportsNoFrameForAFailedSource) {
    engine->SetChannels({From("1", folder / "missing.mp4")});
    ASSERT_TRUE(WaitForState("1", ChannelState::Failed));
    EXPECT_EQ(TakeSnapshot("1").error, SnapshotError::NoFrame);
}

TEST_F(EngineSnapshot, IsAnsweredWhenTheEngineStops) {
    engine->SetChannels({From("1", "test:ball?width=128&height=96&rate=10")});
    ASSERT_TRUE(WaitForState("1", ChannelState::Running));
    std::atomic<int> answers = 0;
    for (int count = 0; count < 20; ++count) engine->RequestSnapshot("1", [&answers](Snapshot const&) { ++answers; });
    engine->Stop();
    EXPECT_EQ(answers, 20);
}

TEST_F(EngineSnapshot, KnowsNoChannelAfterStopping) {
    engine->SetChannels({From("1", "test:ball?width=128&height=96&rate=10")});
    engine->Stop();
    EXPECT_EQ(TakeSnapshot("1").error, SnapshotError::NoSuchChannel);
}

} // namespace
} // namespace zarn::host::video
