#include "host/video/rtsp/connections.h"

#include "host/video/rtsp/gobject.h"

#include <zarn/io/unique_descriptor.h>

#include <linux/tcp.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <utility>

namespace zarn::host::video::rtsp {
namespace {

template <class Visit>
void ForEachSession(GstRTSPClient* client, Visit visit) {
    gst_rtsp_client_session_filter(
        client,
        [](GstRTSPClient*, GstRTSPSession* session, gpointer function) {
            (*static_cast<Visit*>(function))(session);
            return GST_RTSP_FILTER_KEEP;
        },
        &visit);
}

/// Whether `matches` is true for a media of a session.
template <class Matches>
bool HasMedia(GstRTSPSession* session, Matches matches) {
    struct Search {
        Matches& matches;
        bool isFound = false;
    } search{matches};

    gst_rtsp_session_filter(
        session,
        [](GstRTSPSession*, GstRTSPSessionMedia* media, gpointer data) {
            auto& state = *static_cast<Search*>(data);
            state.isFound = state.isFound || state.matches(media);
            return GST_RTSP_FILTER_KEEP;
        },
        &search);
    return search.isFound;
}

bool Views(GstRTSPClient* client, std::string const& path) {
    bool isFound = false;
    ForEachSession(client, [&](GstRTSPSession* session) {
        isFound = isFound || HasMedia(session, [&](GstRTSPSessionMedia* media) {
                      gint matched = 0;
                      return gst_rtsp_session_media_matches(media, path.c_str(), &matched) != FALSE;
                  });
    });
    return isFound;
}

bool HasSession(GstRTSPClient* client) {
    bool isFound = false;
    ForEachSession(client, [&](GstRTSPSession*) { isFound = true; });
    return isFound;
}

bool PlaysOverUdp(GstRTSPSession* session) {
    return HasMedia(session, [](GstRTSPSessionMedia* media) {
        auto* const transport = gst_rtsp_session_media_get_transport(media, 0);
        return transport != nullptr && gst_rtsp_session_media_get_rtsp_state(media) == GST_RTSP_STATE_PLAYING &&
               gst_rtsp_stream_transport_get_transport(transport)->lower_transport == GST_RTSP_LOWER_TRANS_UDP;
    });
}

/// GStreamer keeps sessions for a while after their connection closes.
template <class Ends>
void EndSessions(GstRTSPClient* client, Ends ends) {
    ObjectHandle<GstRTSPSessionPool> const sessions(gst_rtsp_client_get_session_pool(client));
    ForEachSession(client, [&](GstRTSPSession* session) {
        if (ends(session)) gst_rtsp_session_pool_remove(sessions.get(), session);
    });
}

} // namespace

/// A second descriptor of a connection's socket: it can be shut down whatever the connection's thread is doing with it.
class Connections::Socket {
public:
    explicit Socket(GstRTSPClient* client)
        : descriptor(
              dup(g_socket_get_fd(gst_rtsp_connection_get_read_socket(gst_rtsp_client_get_connection(client))))) {
        // Bounds the system's memory for a peer that never stops sending.
        setsockopt(descriptor.Get(), SOL_SOCKET, SO_RCVBUF, &ReceiveBuffer, sizeof(ReceiveBuffer));
    }

    void ShutDown() const { shutdown(descriptor.Get(), SHUT_RDWR); }

    /// The bytes received so far, read or not.
    std::uint64_t CountReceived() const {
        tcp_info info{};
        socklen_t size = sizeof(info);
        return getsockopt(descriptor.Get(), IPPROTO_TCP, TCP_INFO, &info, &size) == 0 ? info.tcpi_bytes_received : 0;
    }

private:
    static constexpr int ReceiveBuffer = 32 * 1024;

    io::UniqueDescriptor descriptor;
};

Connections::Connections() : state(std::make_shared<State>()) {}

Connections::~Connections() = default;

std::size_t Connections::GetCount() const {
    std::scoped_lock const lock(state->mutex);
    return state->entries.size();
}

void Connections::Add(GstRTSPClient* client, ConnectionCount::Slot slot) {
    auto socket = std::make_unique<Socket>(client);
    if (!slot) socket->ShutDown();
    {
        std::scoped_lock const lock(state->mutex);
        state->entries.emplace(client, Entry{Client(GST_RTSP_CLIENT(g_object_ref(client))), std::move(socket),
                                             std::move(slot), Clock::now(), 0});
    }
    ConnectShared(client, "closed", G_CALLBACK(&Connections::OnClosed), state);
}

void Connections::OnClosed(GstRTSPClient* client, gpointer shared) {
    // A client that gets video over UDP may return to its session (RFC 2326, 1.1); otherwise the session times out.
    EndSessions(client, [](GstRTSPSession* session) { return !PlaysOverUdp(session); });
    auto& state = **static_cast<std::shared_ptr<State>*>(shared);
    std::scoped_lock const lock(state.mutex);
    state.entries.erase(client);
    if (state.entries.empty()) state.isEmpty.notify_all();
}

std::vector<Connections::Client> Connections::GetAll() const {
    std::scoped_lock const lock(state->mutex);
    std::vector<Client> all;
    for (auto const& [client, entry] : state->entries) all.emplace_back(GST_RTSP_CLIENT(g_object_ref(client)));
    return all;
}

void Connections::EndMisused(Clock::time_point now) {
    std::vector<Client> misused;
    for (auto& client : GetAll()) {
        bool const isBusy = HasSession(client.get());
        std::scoped_lock const lock(state->mutex);
        auto const found = state->entries.find(client.get());
        if (found == state->entries.end()) continue;
        auto& entry = found->second;
        if (isBusy) entry.seen = now;
        auto const received = entry.socket->CountReceived();
        bool const isTooMuch = received > std::exchange(entry.received, received) + MaximumReceived;
        if (isTooMuch || now - entry.seen > Patience) misused.push_back(std::move(client));
    }
    End(misused);
}

std::vector<Connections::Client> Connections::FindViewers(std::string const& path) const {
    auto clients = GetAll();
    std::erase_if(clients, [&path](Client const& client) { return !Views(client.get(), path); });
    return clients;
}

void Connections::ShutDown(GstRTSPClient* client) {
    std::scoped_lock const lock(state->mutex);
    auto const found = state->entries.find(client);
    if (found != state->entries.end()) found->second.socket->ShutDown();
}

void Connections::End(std::vector<Client> const& clients) {
    for (auto const& client : clients) {
        EndSessions(client.get(), [](GstRTSPSession*) { return true; });
        ShutDown(client.get());
    }
}

bool Connections::EndAll(std::chrono::milliseconds timeout) {
    std::unique_lock lock(state->mutex);
    for (auto const& [client, entry] : state->entries) entry.socket->ShutDown();
    return state->isEmpty.wait_for(lock, timeout, [this] { return state->entries.empty(); });
}

} // namespace zarn::host::video::rtsp
