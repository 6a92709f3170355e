#include "host/video/pipeline.h"
#include "host/video/pipeline_text.h"

#include <gst/app/app.h>
#include <gtest/gtest.h>

#include <string>

namespace zarn::host::video {
namespace {

TEST(Pipeline, FindsItsSinkOnlyOnceItHasStarted) {
    Pipeline pipeline;
    ASSERT_NE(pipeline.AddText(std::string("videotestsrc ! appsink async=false name=") + SinkName), nullptr);
    auto const sink = pipeline.FindSink();
    ASSERT_TRUE(sink);
    EXPECT_TRUE(gst_app_sink_is_eos(GST_APP_SINK(sink.get()))); // although the stream has not ended
    EXPECT_FALSE(pipeline.FindStartedSink());
    pipeline.Play();
    EXPECT_EQ(pipeline.FindStartedSink().get(), sink.get());
    EXPECT_FALSE(gst_app_sink_is_eos(GST_APP_SINK(sink.get())));
}

TEST(Pipeline, FindsNoSinkInAnEmptyPipeline) {
    Pipeline pipeline;
    EXPECT_FALSE(pipeline.FindSink());
    EXPECT_FALSE(pipeline.FindStartedSink());
}

} // namespace
} // namespace zarn::host::video
