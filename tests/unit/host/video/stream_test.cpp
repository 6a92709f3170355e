#include "host/video/gstreamer.h"
#include "host/video/pipeline.h"
#include "host/video/pipeline_text.h"
#include "unit/host/video/stream_fixture.h"

#include <gst/app/app.h>

namespace zarn::host::video {
namespace {

using meta::data::VideoInfo;

class StreamViewed : public StreamTest {
protected:
    /// A viewer's media pipeline: from an application source directly to an application sink.
    StreamViewed() {
        media.AddText(std::string("appsrc format=time max-bytes=0 name=") + FeedName +
                      " ! appsink sync=false async=false max-buffers=1 name=" + SinkName);
    }

    ObjectHandle<GstElement> GetSource() {
        return ObjectHandle<GstElement>(gst_bin_get_by_name(media.GetBin(), FeedName));
    }

    /// Size of the viewer's next access unit; 0 when none arrives.
    std::size_t Take(GstClockTime timeout = 60 * GST_SECOND) {
        auto const sink = media.FindSink();
        MiniHandle<GstSample> const sample(gst_app_sink_try_pull_sample(GST_APP_SINK(sink.get()), timeout));
        return sample ? gst_buffer_get_size(gst_sample_get_buffer(sample.get())) : 0;
    }

    bool HasEnded() {
        auto const sink = media.FindSink();
        return gst_app_sink_is_eos(GST_APP_SINK(sink.get())) != FALSE;
    }

    Pipeline media;
};

TEST_F(StreamViewed, CannotBeJoinedBeforeFormatAndKeyFrame) {
    EXPECT_EQ(stream->Join(GetSource()), nullptr);
    SetFormat();
    Publish(false);
    EXPECT_EQ(stream->Join(GetSource()), nullptr);
    EXPECT_EQ(stream->GetCodec(), std::nullopt);
    Publish(true);
    EXPECT_NE(stream->Join(GetSource()), nullptr);
    EXPECT_EQ(stream->GetCodec(), Codec::H264);
}

TEST_F(StreamViewed, StartsAViewerAtTheNewestKeyFrame) {
    SetFormat();
    for (std::size_t size : {11, 12}) Publish(size == 11, size);
    for (std::size_t size : {21, 22}) Publish(size == 21, size);
    auto const feed = stream->Join(GetSource());
    Publish(false, 23);
    media.Play();
    EXPECT_EQ(Take(), 21);
    EXPECT_EQ(Take(), 22);
    EXPECT_EQ(Take(), 23);
}

TEST_F(StreamViewed, SendsNothingToAViewerThatHasLeft) {
    SetFormat();
    Publish(true, 11);
    auto feed = stream->Join(GetSource());
    feed.reset();
    Publish(false, 12);
    media.Play();
    EXPECT_EQ(Take(), 11);
    EXPECT_EQ(Take(100 * GST_MSECOND), 0);
}

TEST_F(StreamViewed, ResumesASlowViewerAtAKeyFrame) {
    constexpr std::size_t Large = std::size_t{6} * 1024 * 1024;
    SetFormat();
    Publish(true, Large + 1);
    auto const feed = stream->Join(GetSource());
    for (std::size_t index = 2; index < 10; ++index) Publish(false, Large + index);
    media.Play();
    for (std::size_t index = 1; index < 4; ++index) EXPECT_EQ(Take(), Large + index);
    Publish(false, 12);
    Publish(true, 13);
    EXPECT_EQ(Take(), 13); // drops a backlog above 16 MiB, then resumes at a key frame
    Publish(false, 14);
    EXPECT_EQ(Take(), 14);
}

TEST_F(StreamViewed, EndsWhenTheFormatDoesNotContinueTheOld) {
    EXPECT_TRUE(SetFormat());
    Publish(true, 11);
    auto const feed = stream->Join(GetSource());
    media.Play();
    EXPECT_TRUE(SetFormat());
    Publish(false, 12);
    EXPECT_EQ(Take(), 11);
    EXPECT_EQ(Take(), 12);
    EXPECT_FALSE(HasEnded());
    EXPECT_FALSE(SetFormat("video/x-h264,width=64,height=64"));
    EXPECT_EQ(Take(), 0);
    EXPECT_TRUE(HasEnded());
    EXPECT_EQ(stream->GetRecent(), std::nullopt);
}

TEST_F(StreamViewed, WaitsForASourceThatFailed) {
    SetFormat();
    Publish(true, 11);
    auto const feed = stream->Join(GetSource());
    media.Play();
    stream->Interrupt();
    EXPECT_EQ(stream->GetCodec(), std::nullopt);
    Publish(true, 12);
    EXPECT_EQ(Take(), 11);
    EXPECT_EQ(Take(), 12);
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
