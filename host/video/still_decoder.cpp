#include "host/video/still_decoder.h"

#include "host/video/pipeline.h"
#include "host/video/pipeline_text.h"

#include <gst/app/app.h>

#include <algorithm>
#include <utility>

namespace zarn::host::video {
namespace {

using Clock = std::chrono::steady_clock;

/// How long one wait lasts; a stop is noticed after it.
constexpr std::chrono::milliseconds Slice{50};

/// When to give up.
struct Limit {
    Clock::time_point deadline;
    std::stop_token const& stop;

    bool IsReached() const { return stop.stop_requested() || Clock::now() >= deadline; }

    GstClockTime GetSlice() const {
        auto const left = std::min<Clock::duration>(deadline - Clock::now(), Slice);
        return static_cast<GstClockTime>(std::max<Clock::duration::rep>(1, left.count()));
    }
};

/// Puts buffers through a launch line that begins with an application source and ends with an application sink.
class Conversion {
public:
    Conversion(std::string const& text, GstCaps* caps) {
        if (pipeline.AddText(text) == nullptr) return;
        feed.reset(gst_bin_get_by_name(pipeline.GetBin(), FeedName));
        sink = pipeline.FindSink();
        gst_app_src_set_caps(GST_APP_SRC(feed.get()), caps);
        pipeline.Play();
    }

    void Push(GstBuffer* buffer) { gst_app_src_push_buffer(GST_APP_SRC(feed.get()), gst_buffer_ref(buffer)); }

    /// Whether the launch line could be made.
    bool IsReady() const { return feed && sink; }

    /// The last of what comes out, when all that was pushed has passed. Null when it fails or is not through in time.
    MiniHandle<GstSample> Finish(Limit const& limit) {
        gst_app_src_end_of_stream(GST_APP_SRC(feed.get()));
        MiniHandle<GstSample> last;
        auto* const end = GST_APP_SINK(sink.get());
        while (!limit.IsReached() && !pipeline.GetFailure()) {
            if (auto* sample = gst_app_sink_try_pull_sample(end, limit.GetSlice())) {
                last.reset(sample);
            } else if (gst_app_sink_is_eos(end) != FALSE) {
                return last;
            }
        }
        return nullptr;
    }

    std::string GetFailure() const {
        auto const failure = pipeline.GetFailure();
        return failure ? failure->GetText() : "the video cannot be decoded, or not in time";
    }

private:
    Pipeline pipeline;
    ObjectHandle<GstElement> feed;
    ObjectHandle<GstElement> sink;
};

std::shared_ptr<container::Buffer> CopyBytes(GstSample* sample) {
    auto* buffer = gst_sample_get_buffer(sample);
    std::string bytes(gst_buffer_get_size(buffer), '\0');
    bytes.resize(gst_buffer_extract(buffer, 0, bytes.data(), bytes.size()));
    return std::make_shared<container::Buffer>(std::move(bytes));
}

} // namespace

Still DecodeStill(Stream::Recent const& recent, Clock::time_point deadline, std::stop_token const& stop) {
    Limit const limit{deadline, stop};
    auto const& format = recent.format;
    Conversion decoding(MakeDecoderText(format.codec), format.caps.get());
    if (!decoding.IsReady()) return {nullptr, decoding.GetFailure()};
    for (auto const& unit : recent.units) decoding.Push(unit->data.get());
    auto const picture = decoding.Finish(limit);
    if (!picture) return {nullptr, decoding.GetFailure()};

    Conversion encoding(MakeJpegText(format.width, format.height), gst_sample_get_caps(picture.get()));
    if (!encoding.IsReady()) return {nullptr, encoding.GetFailure()};
    encoding.Push(gst_sample_get_buffer(picture.get()));
    auto const jpeg = encoding.Finish(limit);
    if (!jpeg) return {nullptr, encoding.GetFailure()};
    return {CopyBytes(jpeg.get()), {}};
}

} // namespace zarn::host::video
