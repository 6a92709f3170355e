#include "host/video/pipeline.h"

#include "host/video/gstreamer.h"
#include "host/video/pipeline_text.h"

#include <string_view>
#include <utility>

namespace zarn::host::video {
namespace {

/// GStreamer's message for people, and the last line of its technical text, which often says more.
std::string Explain(GstMessage* message) {
    GError* error = nullptr;
    gchar* technical = nullptr;
    gst_message_parse_error(message, &error, &technical);
    std::string text = error == nullptr ? "unknown failure" : error->message;
    std::string_view detail = technical == nullptr ? "" : technical;
    if (auto const line = detail.rfind('\n'); line != std::string_view::npos) detail.remove_prefix(line + 1);
    if (!detail.empty() && technical != detail) text.append(" ").append(detail);
    g_clear_error(&error);
    g_free(technical);
    return text;
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
        Fail(std::string("GStreamer has no element \"") + kind + "\"");
        return nullptr;
    }
    gst_bin_add(GetBin(), element);
    return element;
}

GstElement* Pipeline::AddText(std::string const& text) {
    GError* error = nullptr;
    auto* element = gst_parse_bin_from_description_full(text.c_str(), TRUE, nullptr, GST_PARSE_FLAG_FATAL_ERRORS, &error);
    if (element == nullptr) {
        Fail(error == nullptr ? "GStreamer cannot make the pipeline" : error->message);
        g_clear_error(&error);
        return nullptr;
    }
    gst_bin_add(GetBin(), element);
    return element;
}

void Pipeline::Play() {
    if (gst_element_set_state(pipeline.get(), GST_STATE_PLAYING) == GST_STATE_CHANGE_FAILURE) Fail("it does not start");
}

void Pipeline::End() { gst_element_set_state(pipeline.get(), GST_STATE_NULL); }

void Pipeline::Fail(std::string reason) {
    std::scoped_lock const lock(mutex);
    if (failure.empty()) failure = std::move(reason);
}

std::string Pipeline::GetFailure() const {
    std::scoped_lock const lock(mutex);
    return failure;
}

ObjectHandle<GstElement> Pipeline::FindSink() const {
    return ObjectHandle<GstElement>(gst_bin_get_by_name(GetBin(), SinkName));
}

GstBusSyncReply Pipeline::OnMessage(GstBus*, GstMessage* message, gpointer self) {
    if (GST_MESSAGE_TYPE(message) == GST_MESSAGE_ERROR) static_cast<Pipeline*>(self)->Fail(Explain(message));
    gst_message_unref(message);
    return GST_BUS_DROP;
}

} // namespace zarn::host::video
