#pragma once

#include "host/access/access_settings.h"
#include "host/access/connection_count.h"
#include "host/access/failed_logins.h"
#include "host/video/rtsp/authentication.h"
#include "host/video/rtsp/mount.h"
#include "host/video/rtsp/tunnels.h"

#include <zarn/logging/limited_logger.h>

#include <boost/asio/ip/address.hpp>

#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace zarn::host::video::rtsp {

class Worker;

/// What the connections of a server share. Thread: any.
class Site {
public:
    /// workers       of the server; must outlive what uses them
    /// failedLogins  slows down guessing passwords; never null
    Site(std::vector<Worker*> workers, std::shared_ptr<FailedLogins> failedLogins);

    /// What is served.
    Mounts& GetMounts() { return mounts; }

    /// Tunnels that lack a half.
    Tunnels& GetTunnels() { return tunnels; }

    FailedLogins& GetFailedLogins() { return *failedLogins; }

    /// Where refusals are reported that a peer can repeat at will.
    logging::LimitedLogger& GetRefusals() { return refusals; }

    /// What new connections have to pass; null: nothing.
    std::shared_ptr<Authentication> GetAuthentication() const;

    /// Requires digest authentication of new connections, or none. The same again changes nothing: clients may go on to
    /// answer challenges that they got before. Throws std::runtime_error when the system gives no random bytes.
    void SetAuthentication(bool authenticate, std::string const& ha1);

    /// Bounds for new connections.
    void SetLimits(ConnectionLimits const& limits);

    /// A slot for a connection; null: refused.
    ConnectionCount::Slot AddConnection(boost::asio::ip::address const& peer);

    /// A slot for a session; null: refused. Twice as many sessions as connections are kept, because some wait for their
    /// connection to come back.
    ConnectionCount::Slot AddSession(boost::asio::ip::address const& peer);

    /// The open connections.
    std::size_t CountConnections() const { return connections.Get(); }

    /// An unguessable identifier for a session of a worker.
    static std::string MakeSessionId(Worker const& worker);

    /// The worker whose session has this identifier; null: none can have it.
    Worker* FindWorker(std::string_view sessionId) const;

private:
    ConnectionLimits GetLimits() const;

    std::vector<Worker*> const workers;
    std::shared_ptr<FailedLogins> const failedLogins;
    logging::LimitedLogger refusals;
    Mounts mounts;
    Tunnels tunnels;
    ConnectionCount connections;
    ConnectionCount sessions;

    mutable std::mutex mutex; ///< guards the members below
    std::shared_ptr<Authentication> authentication;
    ConnectionLimits limits;
};

} // namespace zarn::host::video::rtsp
