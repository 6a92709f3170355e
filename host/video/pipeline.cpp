#include "host/video/pipeline.h"

#include "host/video/pipeline_text.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace zarn::host::video {
namespace {

/// The last line of GStreamer's technical text without what is too long to be read; the lines before it are positions
/// in GStreamer's sources.
std::string GetDetail(std::string_view technical) {
    constexpr std::size_t Readable = 100;
    while (technical.ends_with('\n')) technical.remove_suffix(1);
    auto const line = technical.rfind('\n');
    if (line == std::string_view::npos) return {};
    technical.remove_prefix(line + 1);
    return std::string(technical.substr(0, Readable)) + (technical.size() > Readable ? "..." : "");
}

/// The public text of an error of GStreamer, whose own text may hold addresses and paths.
struct Summary {
    GQuark (*domain)();
    int code; ///< AnyCode: the rest of the domain
    char const* text;
};

constexpr int AnyCode = -1;

constexpr std::array Summaries{
    Summary{gst_resource_error_quark, GST_RESOURCE_ERROR_NOT_FOUND, "the source is not there"},
    Summary{gst_resource_error_quark, GST_RESOURCE_ERROR_NOT_AUTHORIZED, "the source refuses the user or password"},
    Summary{gst_resource_error_quark, GST_RESOURCE_ERROR_BUSY, "the source is in use"},
    Summary{gst_resource_error_quark, GST_RESOURCE_ERROR_READ, "the source cannot be read"},
    Summary{gst_resource_error_quark, AnyCode, "the source cannot be opened"},
    Summary{gst_stream_error_quark, AnyCode, "the video of the source cannot be decoded"},
    Summary{gst_core_error_quark, GST_CORE_ERROR_MISSING_PLUGIN, "the video is of a kind that is not supported"},
};

char const* Summarize(GError const* error) {
    auto const fits = [error](Summary const& row) {
        return error != nullptr && row.domain() == error->domain && (row.code == AnyCode || row.code == error->code);
    };
    auto const row = std::ranges::find_if(Summaries, fits);
    return row == Summaries.end() ? "the source has failed" : row->text;
}

/// GStreamer's message for people and what its technical text adds.
Failure Explain(GstMessage* message) {
    GError* error = nullptr;
    gchar* technical = nullptr;
    gst_message_parse_error(message, &error, &technical);
    Failure failure{Summarize(error), error == nullptr ? "unknown failure" : error->message};
    if (auto const detail = GetDetail(technical == nullptr ? "" : technical); !detail.empty())
        failure.detail.append(" ").append(detail);
    g_clear_error(&error);
    g_free(technical);
    return failure;
}

} // namespace

Pipeline::Pipeline() {
    InitializeGStreamer();
    pipeline.reset(GST_ELEMENT(gst_object_ref_sink(gst_pipeline_new(nullptr))));
    ObjectHandle<GstBus> const bus(gst_element_get_bus(pipeline.get()));
    gst_bus_set_sync_handler(bus.get(), OnMessage, this, nullptr);
}

Pipeline::~Pipeline() { End(); }

GstElement* Pipeline::Add(char const* kind) {
    auto* element = gst_element_factory_make(kind, nullptr);
    if (element == nullptr) {
        Fail({std::string("GStreamer has no element \"") + kind + "\""});
        return nullptr;
    }
    gst_bin_add(GetBin(), element);
    return element;
}

GstElement* Pipeline::AddText(std::string const& text) {
    GError* error = nullptr;
    auto* element =
        gst_parse_bin_from_description_full(text.c_str(), TRUE, nullptr, GST_PARSE_FLAG_FATAL_ERRORS, &error);
    if (element == nullptr) {
        Fail({"GStreamer cannot make the pipeline", error == nullptr ? "" : error->message});
        g_clear_error(&error);
        return nullptr;
    }
    gst_bin_add(GetBin(), element);
    return element;
}

void Pipeline::Play() {
    if (gst_element_set_state(pipeline.get(), GST_STATE_PLAYING) == GST_STATE_CHANGE_FAILURE)
        Fail({"it does not start"});
}

void Pipeline::End() { gst_element_set_state(pipeline.get(), GST_STATE_NULL); }

void Pipeline::Fail(Failure reason) {
    std::scoped_lock const lock(mutex);
    if (!failure) failure = std::move(reason);
}

std::optional<Failure> Pipeline::GetFailure() const {
    std::scoped_lock const lock(mutex);
    return failure;
}

ObjectHandle<GstElement> Pipeline::FindSink() const {
    return ObjectHandle<GstElement>(gst_bin_get_by_name(GetBin(), SinkName));
}

ObjectHandle<GstElement> Pipeline::FindStartedSink() const {
    auto sink = FindSink();
    GstState state = GST_STATE_NULL;
    if (sink) gst_element_get_state(sink.get(), &state, nullptr, 0);
    return state >= GST_STATE_PAUSED ? std::move(sink) : nullptr;
}

GstBusSyncReply Pipeline::OnMessage(GstBus*, GstMessage* message, gpointer self) {
    if (GST_MESSAGE_TYPE(message) == GST_MESSAGE_ERROR) static_cast<Pipeline*>(self)->Fail(Explain(message));
    gst_message_unref(message);
    return GST_BUS_DROP;
}

} // namespace zarn::host::video
