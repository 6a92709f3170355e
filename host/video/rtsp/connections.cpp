#include "host/video/rtsp/connections.h"

namespace zarn::host::video::rtsp {
namespace {

/// What CloseViewers() looks for in sessions.
struct Search {
    std::string const& path;
    bool isFound = false;
};

GstRTSPFilterResult MatchMedia(GstRTSPSession*, GstRTSPSessionMedia* media, gpointer data) {
    auto& search = *static_cast<Search*>(data);
    gint matched = 0;
    if (gst_rtsp_session_media_matches(media, search.path.c_str(), &matched) != FALSE) search.isFound = true;
    return GST_RTSP_FILTER_KEEP;
}

GstRTSPFilterResult MatchSession(GstRTSPClient*, GstRTSPSession* session, gpointer search) {
    gst_rtsp_session_filter(session, MatchMedia, search);
    return GST_RTSP_FILTER_KEEP;
}

GstRTSPFilterResult CountSession(GstRTSPClient*, GstRTSPSession*, gpointer count) {
    ++*static_cast<int*>(count);
    return GST_RTSP_FILTER_KEEP;
}

bool Views(GstRTSPClient* client, std::string const& path) {
    Search search{path};
    gst_rtsp_client_session_filter(client, MatchSession, &search);
    return search.isFound;
}

GstRTSPFilterResult RemoveSession(GstRTSPClient*, GstRTSPSession* session, gpointer sessions) {
    gst_rtsp_session_pool_remove(static_cast<GstRTSPSessionPool*>(sessions), session);
    return GST_RTSP_FILTER_KEEP;
}

} // namespace

void Connections::Add(GstRTSPClient* client) {
    since[client] = Clock::now();
    g_signal_connect(client, "closed", G_CALLBACK(&Connections::OnClosed), this);
}

void Connections::OnClosed(GstRTSPClient* client, gpointer self) {
    g_signal_handlers_disconnect_by_data(client, self);
    static_cast<Connections*>(self)->since.erase(client);
}

bool Connections::HasSession(GstRTSPClient* client) {
    int count = 0;
    gst_rtsp_client_session_filter(client, CountSession, &count);
    return count > 0;
}

template <class Predicate>
std::vector<Connections::Client> Connections::Select(Predicate wanted) {
    std::vector<Client> selected;
    for (auto& [client, time] : since) {
        if (wanted(client, time)) selected.emplace_back(GST_RTSP_CLIENT(g_object_ref(client)));
    }
    return selected;
}

void Connections::CloseIdle(Clock::time_point now) {
    Close(Select([now](GstRTSPClient* client, Clock::time_point& seen) {
        if (HasSession(client)) seen = now;
        return now - seen > Patience;
    }));
}

std::vector<Connections::Client> Connections::FindViewers(std::string const& path) {
    return Select([&path](GstRTSPClient* client, auto&) { return Views(client, path); });
}

void Connections::Close(std::vector<Client> const& clients) {
    for (auto const& client : clients) {
        // The sessions too: one whose media go over UDP would outlive its connection.
        ObjectHandle<GstRTSPSessionPool> const sessions(gst_rtsp_client_get_session_pool(client.get()));
        gst_rtsp_client_session_filter(client.get(), RemoveSession, sessions.get());
        gst_rtsp_client_close(client.get());
    }
}

void Connections::CloseAll() {
    Close(Select([](auto*, auto&) { return true; }));
}

} // namespace zarn::host::video::rtsp
