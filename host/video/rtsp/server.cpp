#include "host/video/rtsp/server.h"

#include "host/video/log.h"
#include "host/video/rtsp/authentication.h"
#include "host/video/rtsp/gobject.h"
#include "host/video/rtsp/media_factory.h"

#include <algorithm>
#include <chrono>
#include <functional>
#include <map>
#include <mutex>
#include <stdexcept>
#include <string_view>
#include <thread>
#include <utility>

namespace zarn::host::video::rtsp {
namespace {

constexpr std::string_view Prefix = "/channels/";

/// How long connections stay after the end of their stream, so that viewers over UDP hear of it.
constexpr std::chrono::milliseconds Farewell{150};

/// How long the destructor waits for connections to end.
constexpr std::chrono::milliseconds EndTimeout{600};

constexpr guint CheckSeconds = 2;
constexpr guint MaximumBody = 64 * 1024;
constexpr guint MaximumSessions = 2 * Connections::Maximum; // some wait for their connection to come back
constexpr gint ThreadPerConnection = -1;

void OverrideCreateClient(GstRTSPServerClass& table);

/// A server that asks before it accepts a connection; one that is refused is closed at once. The function is called on
/// the thread that the server is attached to.
using BoundedServer = Derived<GstRTSPServer, GstRTSPServerClass, std::function<bool()>, OverrideCreateClient>;

GstRTSPClient* CreateClient(GstRTSPServer* server) {
    return BoundedServer::GetValue(server)() ? BoundedServer::GetBase().create_client(server) : nullptr;
}

void OverrideCreateClient(GstRTSPServerClass& table) { table.create_client = CreateClient; }

std::string MakePath(std::string const& id) { return std::string(Prefix) + id; }

/// The channel in the path of a stream, `/channels/1`, or of its media, `/channels/1/stream=0`; empty when there is
/// none.
std::string_view FindId(GstRTSPContext const* context) {
    if (context->uri == nullptr || context->uri->abspath == nullptr) return {};
    std::string_view path = context->uri->abspath;
    if (!path.starts_with(Prefix)) return {};
    path.remove_prefix(Prefix.size());
    auto const rest = std::min(path.find('/'), path.size());
    return rest == path.size() || path.substr(rest).starts_with("/stream=") ? path.substr(0, rest) : std::string_view();
}

std::string ToMessage(GError* error) {
    std::string text = error == nullptr ? "unknown reason" : error->message;
    g_clear_error(&error);
    return text;
}

} // namespace

/// The streams that are served, by the identifier of their channel. Thread: any.
class Server::Streams {
public:
    void Set(std::string const& id, std::shared_ptr<Stream> const& stream) {
        std::scoped_lock const lock(mutex);
        streams.insert_or_assign(id, stream);
    }

    void Remove(std::string const& id) {
        std::scoped_lock const lock(mutex);
        streams.erase(id);
    }

    /// Null when there is none.
    std::shared_ptr<Stream> Find(std::string_view id) const {
        std::scoped_lock const lock(mutex);
        auto const found = streams.find(id);
        return found == streams.end() ? nullptr : found->second;
    }

private:
    mutable std::mutex mutex; ///< guards the following
    std::map<std::string, std::shared_ptr<Stream>, std::less<>> streams;
};

Server::Server(std::uint16_t port, std::shared_ptr<FailedLogins> failedLogins)
    : refusals(Log().GetName()), failedLogins(std::move(failedLogins)), streams(std::make_shared<Streams>()) {
    InitializeGStreamer();
    server = BoundedServer::Make(GST_TYPE_RTSP_SERVER, "ZarnRtspServer", [this] { return HasRoom(); });
    ObjectHandle<GstRTSPThreadPool> const threads(gst_rtsp_server_get_thread_pool(server.get()));
    gst_rtsp_thread_pool_set_max_threads(threads.get(), ThreadPerConnection);
    sessions.reset(gst_rtsp_server_get_session_pool(server.get()));
    gst_rtsp_session_pool_set_max_sessions(sessions.get(), MaximumSessions);
    mounts.reset(gst_rtsp_server_get_mount_points(server.get()));
    gst_rtsp_server_set_content_length_limit(server.get(), MaximumBody);
    gst_rtsp_server_set_service(server.get(), std::to_string(port).c_str());
    g_signal_connect(server.get(), "client-connected", G_CALLBACK(&Server::OnConnected), this);

    GError* error = nullptr;
    auto* source = gst_rtsp_server_create_source(server.get(), nullptr, &error);
    if (source == nullptr) {
        throw std::runtime_error("RTSP port " + std::to_string(port) + " cannot be bound: " + ToMessage(error));
    }
    sources.push_back(source);
    auto* timer = g_timeout_source_new_seconds(CheckSeconds);
    g_source_set_callback(timer, &Server::OnTimer, this, nullptr);
    sources.push_back(timer);
    loop.emplace(); // nothing above needs its thread
}

Server::~Server() {
    loop->Run([this] { StopAccepting(); });
    if (connections.GetCount() > 0) std::this_thread::sleep_for(Farewell);
    if (!connections.EndAll(EndTimeout)) Log().Log(logging::Level::Warning, "RTSP connections do not end in time");
    gst_rtsp_session_pool_filter(
        sessions.get(), [](auto*, auto*, gpointer) { return GST_RTSP_FILTER_REMOVE; }, nullptr);
}

void Server::Start() {
    if (std::exchange(isStarted, true)) return;
    for (auto* source : sources) g_source_attach(source, loop->GetContext());
}

void Server::SetAuthentication(bool authenticate, std::string const& ha1) {
    auto wanted = authenticate ? std::optional(ha1) : std::nullopt;
    if (wanted == requiredHa1) return; // the challenges that have been sent belong to the present object
    auto const authentication = authenticate ? MakeAuthentication(ha1, failedLogins) : nullptr;
    gst_rtsp_server_set_auth(server.get(), authentication.get());
    requiredHa1.swap(wanted);
}

void Server::SetLimits(ConnectionLimits const& limits) {
    maximum = std::min(limits.connections, Connections::Maximum);
    maximumPerAddress = limits.connectionsPerAddress;
}

void Server::Mount(std::string const& id, std::shared_ptr<Stream> const& stream) {
    gst_rtsp_mount_points_add_factory(mounts.get(), MakePath(id).c_str(), MakeMediaFactory(stream).release());
    streams->Set(id, stream);
}

void Server::Unmount(std::string const& id) {
    gst_rtsp_mount_points_remove_factory(mounts.get(), MakePath(id).c_str());
    streams->Remove(id);
    Disconnect(id);
}

void Server::Disconnect(std::string const& id) {
    auto const viewers = std::make_shared<std::vector<Connections::Client>>(connections.FindViewers(MakePath(id)));
    if (!viewers->empty()) loop->Post([this, viewers] { connections.End(*viewers); }, Farewell);
}

std::uint16_t Server::GetPort() const {
    return static_cast<std::uint16_t>(gst_rtsp_server_get_bound_port(server.get()));
}

/// Accepts no more connections.
void Server::StopAccepting() {
    for (auto* source : std::exchange(sources, {})) {
        g_source_destroy(source);
        g_source_unref(source);
    }
}

bool Server::HasRoom() {
    auto const count = connections.GetCount();
    if (count < maximum) return true;
    refusals.Log(logging::Level::Warning, "Refused an RTSP connection: %0% are open", count);
    return false;
}

/// The address of a connection is known only once it is there.
void Server::Add(GstRTSPClient* client) {
    auto const peer = GetPeer(gst_rtsp_client_get_connection(client));
    auto slot = count.Add(peer, {Connections::Maximum, maximumPerAddress});
    if (!slot) {
        refusals.Log(logging::Level::Warning, "Refused an RTSP connection from %0%: too many are open",
                     peer.to_string());
    }
    connections.Add(client, std::move(slot));
}

void Server::OnConnected(GstRTSPServer*, GstRTSPClient* client, gpointer self) {
    auto& server = *static_cast<Server*>(self);
    server.Add(client);
    for (auto const* signal : {"pre-describe-request", "pre-setup-request"})
        ConnectShared(client, signal, G_CALLBACK(&Server::OnRequest), server.streams);
}

/// A channel that has no video at the moment is there, but cannot be served: try again.
GstRTSPStatusCode Server::OnRequest(GstRTSPClient*, GstRTSPContext* context, gpointer shared) {
    auto const stream = (*static_cast<std::shared_ptr<Streams>*>(shared))->Find(FindId(context));
    return stream && !stream->GetCodec() ? GST_RTSP_STS_SERVICE_UNAVAILABLE : GST_RTSP_STS_OK;
}

gboolean Server::OnTimer(gpointer self) {
    auto& server = *static_cast<Server*>(self);
    gst_rtsp_session_pool_cleanup(server.sessions.get());
    server.connections.EndMisused(Connections::Clock::now());
    return G_SOURCE_CONTINUE;
}

} // namespace zarn::host::video::rtsp
