#pragma once

#include "host/access/access_settings.h"
#include "host/access/failed_logins.h"
#include "host/video/gstreamer.h"
#include "host/video/rtsp/connections.h"
#include "host/video/rtsp/loop.h"
#include "host/video/stream.h"

#include <zarn/logging/limited_logger.h>

#include <gst/rtsp-server/rtsp-server.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace zarn::host::video::rtsp {

/// The RTSP server: one port, a path per channel. RTP goes over the connection or over UDP. Connections and sessions
/// are bounded; idle ones are ended. The loop's thread accepts connections and checks them now and then; every
/// connection has a thread of its own, since a peer that never stops sending keeps GStreamer reading. Thread: any, one
/// at a time, but for Disconnect(). Source: RFC 2326.
class Server {
public:
    /// Binds the port. Connections queue up until Start() accepts them.
    /// port          TCP port; 0 binds a free one
    /// failedLogins  slows down guessing passwords; never null
    /// Throws std::runtime_error when it cannot be bound; the message names the port.
    Server(std::uint16_t port, std::shared_ptr<FailedLogins> failedLogins);

    /// Ends all connections and closes the port. Viewers hear of the end when their streams have been ended before.
    ~Server();

    Server(Server const&) = delete;
    Server& operator=(Server const&) = delete;

    /// The bound port.
    std::uint16_t GetPort() const;

    /// Accepts connections. Calling it again does nothing.
    void Start();

    /// Whether new connections must authenticate (digest, with this hash). The same again changes nothing: clients may
    /// go on to answer challenges that they got before.
    void SetAuthentication(bool authenticate, std::string const& ha1);

    /// Bounds for new connections.
    void SetLimits(ConnectionLimits const& limits);

    /// Serves a stream at `/channels/ID`, in place of what was there.
    void Mount(std::string const& id, std::shared_ptr<Stream> const& stream);

    /// Serves nothing there any more; the viewers' connections end as by Disconnect().
    void Unmount(std::string const& id);

    /// Ends the connections of the viewers of a channel, after a moment in which they hear of the end of the
    /// stream, which the caller has ended. Returns at once. Thread: any.
    void Disconnect(std::string const& id);

private:
    class Streams;

    void StopAccepting();
    bool HasRoom();
    void Add(GstRTSPClient* client);
    static void OnConnected(GstRTSPServer*, GstRTSPClient* client, gpointer self);
    static GstRTSPStatusCode OnRequest(GstRTSPClient*, GstRTSPContext* context, gpointer streams);
    static gboolean OnTimer(gpointer self);

    Connections connections;
    ConnectionCount count; ///< without refused connections
    logging::LimitedLogger refusals;
    std::atomic<std::size_t> maximum = Connections::Maximum;
    std::atomic<std::size_t> maximumPerAddress = Connections::Maximum;
    std::shared_ptr<FailedLogins> const failedLogins;
    std::optional<std::string> requiredHa1; ///< of clients that connect; none: no authentication
    std::shared_ptr<Streams> const streams;
    ObjectHandle<GstRTSPServer> server;
    ObjectHandle<GstRTSPSessionPool> sessions;
    ObjectHandle<GstRTSPMountPoints> mounts;
    std::vector<GSource*> sources; ///< touched at the beginning and at the end only
    bool isStarted = false;
    std::optional<Loop> loop; ///< last, so that it ends before what it uses goes
};

} // namespace zarn::host::video::rtsp
