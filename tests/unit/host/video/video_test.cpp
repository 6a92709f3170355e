#include "unit/host/video/video_test.h"

#include "host/video/gstreamer.h"
#include "host/video/pipeline.h"
#include "host/video/pipeline_text.h"
#include "support/eventually.h"

#include <gst/app/app.h>
#include <gst/video/video.h>

#include <cstdlib>
#include <future>
#include <stdexcept>

namespace zarn::host::video {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr std::string_view ToGray = "videoconvert ! video/x-raw,format=GRAY8 ! ";

std::string MakeSink(bool isEndless) {
    return std::string("appsink sync=false name=") + SinkName + (isEndless ? " max-buffers=200 drop=true" : "");
}

Picture ReadSample(GstSample* sample) {
    auto* buffer = gst_sample_get_buffer(sample);
    Picture picture;
    picture.time = std::chrono::nanoseconds(GST_BUFFER_PTS_IS_VALID(buffer) ? GST_BUFFER_PTS(buffer) : 0);
    GstVideoInfo info;
    GstVideoFrame frame;
    auto* caps = gst_sample_get_caps(sample);
    auto const* type = gst_structure_get_name(gst_caps_get_structure(caps, 0));
    if (std::string_view(type) != "video/x-raw" || gst_video_info_from_caps(&info, caps) == FALSE) return picture;
    if (gst_video_frame_map(&frame, &info, buffer, GST_MAP_READ) == FALSE) return picture;
    picture.width = GST_VIDEO_FRAME_WIDTH(&frame);
    picture.height = GST_VIDEO_FRAME_HEIGHT(&frame);
    for (int row = 0; row < picture.height; ++row) {
        auto const* line = static_cast<char const*>(GST_VIDEO_FRAME_PLANE_DATA(&frame, 0)) +
                           static_cast<std::ptrdiff_t>(row) * GST_VIDEO_FRAME_PLANE_STRIDE(&frame, 0);
        picture.brightness.append(line, static_cast<std::size_t>(picture.width));
    }
    gst_video_frame_unmap(&frame);
    return picture;
}

std::filesystem::path MakeFolder() {
    auto name = (std::filesystem::temp_directory_path() / "zarn-video-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary folder");
    return name;
}

} // namespace

class Viewer::Impl {
public:
    Impl(std::string const& url, ViewerOptions const& options) {
        // buffer-mode=none keeps the timestamps sent by the server.
        auto text = "rtspsrc latency=100 buffer-mode=none location=" + url + " protocols=" + options.transport;
        if (!options.user.empty()) text += " user-id=" + options.user + " user-pw=\"" + options.password + "\"";
        text += options.decode ? " ! decodebin ! " + std::string(ToGray) : " ! parsebin ! ";
        // Not Pipeline::AddText(): rtspsrc adds its pads later, so the decoder must not be treated as an open end.
        gst_bin_add(pipeline.GetBin(), gst_parse_bin_from_description((text + MakeSink(true)).c_str(), FALSE, nullptr));
        sink = pipeline.FindSink();
        pipeline.Play();
    }

    Pipeline pipeline;
    ObjectHandle<GstElement> sink;
};

Viewer::Viewer(std::string const& url, ViewerOptions const& options) : impl(std::make_unique<Impl>(url, options)) {}

Viewer::~Viewer() = default;

std::optional<Picture> Viewer::Next(std::chrono::milliseconds timeout) {
    auto const end = Clock::now() + timeout;
    while (Clock::now() < end && !HasEnded()) {
        MiniHandle<GstSample> const sample(
            gst_app_sink_try_pull_sample(GST_APP_SINK(impl->sink.get()), 20 * GST_MSECOND));
        if (sample) return ReadSample(sample.get());
    }
    return std::nullopt;
}

bool Viewer::HasEnded() const {
    return impl->pipeline.GetFailure() || gst_app_sink_is_eos(GST_APP_SINK(impl->sink.get())) != FALSE;
}

std::string Viewer::GetFailure() const {
    auto const failure = impl->pipeline.GetFailure();
    return failure ? failure->GetText() : std::string();
}

std::optional<Picture> DecodeJpeg(std::string_view jpeg) {
    Pipeline pipeline;
    pipeline.AddText(std::string("appsrc name=") + FeedName + " caps=image/jpeg ! jpegdec ! " + std::string(ToGray) +
                     MakeSink(false));
    ObjectHandle<GstElement> const feed(gst_bin_get_by_name(pipeline.GetBin(), FeedName));
    auto const sink = pipeline.FindSink();
    pipeline.Play();
    gst_app_src_push_buffer(GST_APP_SRC(feed.get()), gst_buffer_new_memdup(jpeg.data(), jpeg.size()));
    gst_app_src_end_of_stream(GST_APP_SRC(feed.get()));
    MiniHandle<GstSample> const sample(gst_app_sink_try_pull_sample(GST_APP_SINK(sink.get()), 10 * GST_SECOND));
    if (!sample) return std::nullopt;
    return ReadSample(sample.get());
}

bool RunToEnd(std::string const& launchLine) {
    InitializeGStreamer();
    ObjectHandle<GstElement> const pipeline(gst_parse_launch(launchLine.c_str(), nullptr));
    if (!pipeline) return false;
    ObjectHandle<GstBus> const bus(gst_element_get_bus(pipeline.get()));
    gst_element_set_state(pipeline.get(), GST_STATE_PLAYING);
    MiniHandle<GstMessage> const message(gst_bus_timed_pop_filtered(
        bus.get(), 60 * GST_SECOND, static_cast<GstMessageType>(GST_MESSAGE_EOS | GST_MESSAGE_ERROR)));
    gst_element_set_state(pipeline.get(), GST_STATE_NULL);
    return message && GST_MESSAGE_TYPE(message.get()) == GST_MESSAGE_EOS;
}

ChannelSettings From(std::string id, std::string source) {
    ChannelSettings settings;
    settings.id = std::move(id);
    settings.source = std::move(source);
    return settings;
}

VideoTest::VideoTest() : folder(MakeFolder()) {
    g_log_set_always_fatal(static_cast<GLogLevelFlags>(G_LOG_FATAL_MASK | G_LOG_LEVEL_CRITICAL));
    engine = std::make_unique<Engine>(RtspSettings());
    engine->SetChannels({});
}

VideoTest::~VideoTest() {
    engine.reset();
    std::filesystem::remove_all(folder);
}

std::string VideoTest::GetUrl(std::string const& id) const {
    return "rtsp://127.0.0.1:" + std::to_string(engine->GetPort()) + "/channels/" + id;
}

ChannelStatus VideoTest::GetStatus(std::string const& id) const {
    for (auto& status : engine->GetStatus()) {
        if (status.id == id) return std::move(status);
    }
    throw std::logic_error("no channel " + id);
}

bool VideoTest::WaitForState(std::string const& id, ChannelState state) {
    return test::Eventually([&] { return GetStatus(id).state == state; });
}

std::string VideoTest::AwaitFailure(std::string const& id) {
    ChannelStatus status;
    bool const failed = test::Eventually([&] { return (status = GetStatus(id)).state == ChannelState::Failed; });
    return failed ? status.detail : "";
}

Snapshot VideoTest::TakeSnapshot(std::string const& id) {
    auto promise = std::make_shared<std::promise<Snapshot>>();
    auto answer = promise->get_future();
    engine->RequestSnapshot(id, [promise](Snapshot snapshot) { promise->set_value(std::move(snapshot)); });
    if (answer.wait_for(Deadline) != std::future_status::ready)
        throw std::runtime_error("the snapshot was never answered");
    return answer.get();
}

Snapshot VideoTest::WaitForSnapshot(std::string const& id) {
    Snapshot snapshot;
    test::Eventually([&] {
        snapshot = TakeSnapshot(id);
        return snapshot.error == SnapshotError::None;
    });
    return snapshot;
}

} // namespace zarn::host::video
