#include "host/video/rtsp/media_factory.h"

#include "host/video/pipeline_text.h"

#include <gst/app/app.h>

#include <utility>

namespace zarn::host::video::rtsp {
namespace {

/// GObject's way of deriving: the base's instance comes first, and construction and destruction are functions of the
/// class.
struct Factory {
    GstRTSPMediaFactory base;
    std::shared_ptr<Stream>* stream;
};

struct FactoryClass {
    GstRTSPMediaFactoryClass base;
};

/// The media's element keeps its feed alive under this name.
constexpr char FeedKey[] = "zarn-feed";

void DeleteFeed(gpointer feed) { delete static_cast<std::shared_ptr<Feed>*>(feed); }

GstElement* CreateElement(GstRTSPMediaFactory* factory, GstRTSPUrl const*) {
    auto const& stream = *reinterpret_cast<Factory*>(factory)->stream;
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

void FinalizeFactory(GObject* object) {
    delete reinterpret_cast<Factory*>(object)->stream;
    auto* parent = g_type_class_peek(GST_TYPE_RTSP_MEDIA_FACTORY);
    G_OBJECT_CLASS(parent)->finalize(object);
}

void InitializeFactoryClass(gpointer type, gpointer) {
    G_OBJECT_CLASS(type)->finalize = FinalizeFactory;
    GST_RTSP_MEDIA_FACTORY_CLASS(type)->create_element = CreateElement;
}

GType GetFactoryType() {
    static GType const Type =
        g_type_register_static_simple(GST_TYPE_RTSP_MEDIA_FACTORY, "ZarnMediaFactory", sizeof(FactoryClass),
                                      InitializeFactoryClass, sizeof(Factory), nullptr, static_cast<GTypeFlags>(0));
    return Type;
}

} // namespace

ObjectHandle<GstRTSPMediaFactory> MakeMediaFactory(std::shared_ptr<Stream> stream) {
    ObjectHandle<GstRTSPMediaFactory> factory(GST_RTSP_MEDIA_FACTORY(g_object_new(GetFactoryType(), nullptr)));
    reinterpret_cast<Factory*>(factory.get())->stream = new std::shared_ptr<Stream>(std::move(stream));
    gst_rtsp_media_factory_set_shared(factory.get(), FALSE);
    gst_rtsp_media_factory_set_protocols(
        factory.get(), static_cast<GstRTSPLowerTrans>(GST_RTSP_LOWER_TRANS_TCP | GST_RTSP_LOWER_TRANS_UDP));
    gst_rtsp_media_factory_add_role(factory.get(), AdminRole, GST_RTSP_PERM_MEDIA_FACTORY_ACCESS, G_TYPE_BOOLEAN, TRUE,
                                    GST_RTSP_PERM_MEDIA_FACTORY_CONSTRUCT, G_TYPE_BOOLEAN, TRUE, nullptr);
    return factory;
}

} // namespace zarn::host::video::rtsp
