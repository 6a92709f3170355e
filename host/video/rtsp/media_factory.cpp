#include "host/video/rtsp/media_factory.h"

#include "host/video/pipeline_text.h"
#include "host/video/rtsp/gobject.h"

#include <gst/app/app.h>

#include <utility>

namespace zarn::host::video::rtsp {
namespace {

void OverrideCreateElement(GstRTSPMediaFactoryClass& table);

using Factory = Derived<GstRTSPMediaFactory, GstRTSPMediaFactoryClass, std::shared_ptr<Stream>, OverrideCreateElement>;

/// The media's element keeps its feed alive under this name.
constexpr char FeedKey[] = "zarn-feed";

void DeleteFeed(gpointer feed) { delete static_cast<std::shared_ptr<Feed>*>(feed); }

GstElement* CreateElement(GstRTSPMediaFactory* factory, GstRTSPUrl const*) {
    auto const& stream = Factory::GetValue(factory);
    auto const codec = stream->GetCodec();
    if (!codec) return nullptr;
    auto* element = gst_parse_launch(MakePayloaderText(*codec).c_str(), nullptr);
    if (element == nullptr) return nullptr;
    ObjectHandle<GstElement> source(gst_bin_get_by_name(GST_BIN(element), FeedName));
    auto feed = stream->Join(std::move(source));
    if (!feed) {
        gst_object_unref(gst_object_ref_sink(element));
        return nullptr;
    }
    g_object_set_data_full(G_OBJECT(element), FeedKey, new std::shared_ptr<Feed>(std::move(feed)), DeleteFeed);
    return element;
}

void OverrideCreateElement(GstRTSPMediaFactoryClass& table) { table.create_element = CreateElement; }

} // namespace

ObjectHandle<GstRTSPMediaFactory> MakeMediaFactory(std::shared_ptr<Stream> stream) {
    auto factory = Factory::Make(GST_TYPE_RTSP_MEDIA_FACTORY, "ZarnMediaFactory", std::move(stream));
    gst_rtsp_media_factory_set_shared(factory.get(), FALSE);
    gst_rtsp_media_factory_set_protocols(
        factory.get(), static_cast<GstRTSPLowerTrans>(GST_RTSP_LOWER_TRANS_TCP | GST_RTSP_LOWER_TRANS_UDP));
    gst_rtsp_media_factory_add_role(factory.get(), AdminRole, GST_RTSP_PERM_MEDIA_FACTORY_ACCESS, G_TYPE_BOOLEAN, TRUE,
                                    GST_RTSP_PERM_MEDIA_FACTORY_CONSTRUCT, G_TYPE_BOOLEAN, TRUE, nullptr);
    return factory;
}

} // namespace zarn::host::video::rtsp
