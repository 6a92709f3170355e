#include "host/video/rtsp/bounded_server.h"

#include <utility>

namespace zarn::host::video::rtsp {
namespace {

/// GObject's way of deriving: the base's instance comes first, and construction and destruction are functions of the
/// class.
struct BoundedServer {
    GstRTSPServer base;
    std::function<bool()>* isWanted;
};

struct BoundedServerClass {
    GstRTSPServerClass base;
};

GstRTSPServerClass* GetServerParent() { return GST_RTSP_SERVER_CLASS(g_type_class_peek(GST_TYPE_RTSP_SERVER)); }

GstRTSPClient* CreateClient(GstRTSPServer* server) {
    if (!(*reinterpret_cast<BoundedServer*>(server)->isWanted)()) return nullptr;
    return GetServerParent()->create_client(server);
}

void FinalizeServer(GObject* object) {
    delete reinterpret_cast<BoundedServer*>(object)->isWanted;
    G_OBJECT_CLASS(GetServerParent())->finalize(object);
}

void InitializeServerClass(gpointer type, gpointer) {
    G_OBJECT_CLASS(type)->finalize = FinalizeServer;
    GST_RTSP_SERVER_CLASS(type)->create_client = CreateClient;
}

GType GetServerType() {
    static GType const Type = g_type_register_static_simple(GST_TYPE_RTSP_SERVER, "ZarnRtspServer",
                                                            sizeof(BoundedServerClass), InitializeServerClass,
                                                            sizeof(BoundedServer), nullptr, static_cast<GTypeFlags>(0));
    return Type;
}

} // namespace

ObjectHandle<GstRTSPServer> MakeBoundedServer(std::function<bool()> isWanted) {
    ObjectHandle<GstRTSPServer> server(GST_RTSP_SERVER(g_object_new(GetServerType(), nullptr)));
    reinterpret_cast<BoundedServer*>(server.get())->isWanted = new std::function<bool()>(std::move(isWanted));
    return server;
}

} // namespace zarn::host::video::rtsp
