#include "host/video/gstreamer.h"
#include "unit/host/video/stream_fixture.h"

#include <gmock/gmock.h>

#include <cstddef>
#include <memory>
#include <vector>

namespace zarn::host::video {
namespace {

using meta::data::VideoInfo;
using testing::ElementsAre;
using testing::IsEmpty;

/// Remembers what a stream tells it.
class Listener final : public Stream::Subscriber {
public:
    void OnUnit(AccessUnitPtr const& unit) override {
        sizes.push_back(unit->size);
        numbers.push_back(unit->number);
    }

    void OnEnd() override { ++ends; }

    std::vector<std::size_t> sizes;
    std::vector<std::uint64_t> numbers;
    int ends = 0;
};

class StreamViewed : public StreamTest {
protected:
    StreamViewed() {
        InitializeGStreamer();
        stream->Subscribe(listener);
    }

    /// Sizes of the access units that a new viewer begins with.
    std::vector<std::size_t> GetGroup() const {
        std::vector<std::size_t> sizes;
        if (auto const recent = stream->GetRecent()) {
            for (auto const& unit : recent->units) sizes.push_back(unit->size);
        }
        return sizes;
    }

    std::shared_ptr<Listener> listener = std::make_shared<Listener>();
};

TEST_F(StreamViewed, HasNothingToViewBeforeFormatAndKeyFrame) {
    EXPECT_EQ(stream->GetRecent(), std::nullopt);
    SetFormat();
    Publish(false);
    EXPECT_EQ(stream->GetRecent(), std::nullopt);
    Publish(true);
    ASSERT_NE(stream->GetRecent(), std::nullopt);
    EXPECT_EQ(stream->GetRecent()->format.codec, Codec::H264);
}

TEST_F(StreamViewed, StartsAViewerAtTheNewestKeyFrame) {
    SetFormat();
    for (std::size_t size : {11, 12}) Publish(size == 11, size);
    for (std::size_t size : {21, 22}) Publish(size == 21, size);
    EXPECT_THAT(GetGroup(), ElementsAre(21, 22));
}

TEST_F(StreamViewed, TellsSubscribersEveryAccessUnitInOrder) {
    SetFormat();
    for (std::size_t size : {11, 12, 13}) Publish(size == 11, size);
    EXPECT_THAT(listener->sizes, ElementsAre(11, 12, 13));
    EXPECT_THAT(listener->numbers, ElementsAre(1, 2, 3));
}

TEST_F(StreamViewed, TellsNothingToASubscriberThatHasLeft) {
    SetFormat();
    Publish(true, 11);
    std::weak_ptr<Listener> const left = listener;
    listener.reset();
    EXPECT_TRUE(left.expired()) << "the stream keeps it";
    Publish(false, 12);
    EXPECT_THAT(GetGroup(), ElementsAre(11, 12));
}

TEST_F(StreamViewed, EndsWhenTheFormatDoesNotContinueTheOld) {
    EXPECT_TRUE(SetFormat());
    Publish(true, 11);
    EXPECT_TRUE(SetFormat());
    Publish(false, 12);
    EXPECT_THAT(listener->sizes, ElementsAre(11, 12));
    auto const before = listener->ends;
    EXPECT_FALSE(SetFormat("video/x-h264,width=64,height=64"));
    EXPECT_EQ(listener->ends, before + 1);
    EXPECT_EQ(stream->GetRecent(), std::nullopt);
}

TEST_F(StreamViewed, WaitsForASourceThatFailed) {
    SetFormat();
    Publish(true, 11);
    auto const before = listener->ends;
    stream->Interrupt();
    EXPECT_THAT(GetGroup(), IsEmpty());
    Publish(true, 12);
    EXPECT_THAT(listener->sizes, ElementsAre(11, 12));
    EXPECT_EQ(listener->ends, before);
}

TEST_F(StreamViewed, EndsForItsSubscribers) {
    auto const before = listener->ends;
    stream->End();
    EXPECT_EQ(listener->ends, before + 1);
}

using StreamDescribed = StreamTest;

TEST_F(StreamDescribed, ReportsTheDescriptionUntilTheFormatIsKnown) {
    InitializeGStreamer();
    EXPECT_EQ(stream->Describe(), VideoInfo({1, 2}, "described", 3, 4));
    SetFormat("video/x-h264,width=128,height=96,framerate=12/1");
    EXPECT_EQ(stream->Describe(), VideoInfo({128, 96}, "video/x-h264", 12, 1));
    stream->SetDescribed(VideoInfo());
    EXPECT_EQ(stream->Describe(), VideoInfo({128, 96}, "video/x-h264", 12, 1));
}

TEST_F(StreamDescribed, MeasuresTheRateWhenTheFormatHasNone) {
    InitializeGStreamer();
    SetFormat("video/x-h264,width=128,height=96");
    EXPECT_EQ(stream->Describe(), VideoInfo({128, 96}, "video/x-h264", 0, 1));
    for (int count = 0; count < 20; ++count) Publish(count == 0);
    EXPECT_EQ(stream->Describe(), VideoInfo({128, 96}, "video/x-h264", 25, 1));
}

} // namespace
} // namespace zarn::host::video
