#pragma once

#include "host/access/failed_logins.h"
#include "host/video/rtsp_settings.h"
#include "host/video/stream.h"

#include <cstdint>
#include <memory>
#include <string>

namespace zarn::host::video::rtsp {

/// The RTSP server: one port, a thread per connection, a path per channel. RTP goes over the connection or over UDP.
/// Connections and sessions are bounded; those that do nothing are ended.
/// Thread: any, one at a time, but for Disconnect(). Source: RFC 2326.
class Server {
public:
    /// port          TCP port; 0 binds a free one
    /// failedLogins  slows down guessing passwords; never null
    /// Throws std::runtime_error when it cannot be bound; the message names the port.
    Server(std::uint16_t port, std::shared_ptr<FailedLogins> failedLogins);

    /// Stop().
    ~Server();

    Server(Server const&) = delete;
    Server& operator=(Server const&) = delete;

    /// The bound port.
    std::uint16_t GetPort() const;

    /// Whether new connections must authenticate (digest, with this hash).
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

    /// Ends all connections and closes the port. Viewers hear of the end when their streams have been ended
    /// before. Stopping twice is harmless. Nothing else may be called afterwards.
    void Stop();

private:
    class Impl;
    std::unique_ptr<Impl> impl;
    std::uint16_t port = 0;
};

} // namespace zarn::host::video::rtsp
