#pragma once

#include "host/access/access_settings.h"
#include "host/access/failed_logins.h"
#include "host/video/stream.h"

#include <cstdint>
#include <memory>
#include <string>

namespace zarn::host::video::rtsp {

/// The RTSP server: one port, a path per channel. RTP goes over the connection or over UDP. Connections and sessions
/// are bounded; idle ones are ended. A few threads serve all of them. Thread: any, one at a time. Source: RFC 2326.
class Server {
public:
    /// Binds the port. Connections queue up until Start() accepts them.
    /// port          TCP port; 0 binds a free one
    /// failedLogins  slows down guessing passwords; never null
    /// Throws std::runtime_error when it cannot be bound, which names the port; std::system_error when a thread cannot
    /// be started.
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

    /// Serves nothing there any more; the viewers' connections end soon.
    void Unmount(std::string const& id);

private:
    class Impl;
    std::unique_ptr<Impl> impl;
};

} // namespace zarn::host::video::rtsp
