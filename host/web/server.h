#pragma once

#include "host/access/failed_logins.h"
#include "host/web/admission.h"
#include "host/web/limits.h"
#include "host/web/listener.h"
#include "host/web/router.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/ssl/context.hpp>

#include <chrono>
#include <cstdint>
#include <memory>

namespace zarn::host::web {

/// The web server: accepts connections on a listener and serves them on a few threads that never wait.
/// Thread: any for setting limits and TLS; one at a time, and none of the server's own, for the rest.
class Server {
public:
    struct Options {
        Limits limits;

        /// Certificate and key; null: plain HTTP.
        std::shared_ptr<boost::asio::ssl::context> tls;

        /// Threads that run the I/O context.
        unsigned threads = 2;

        /// How long a connection that is about to end waits for a request that is already on its way.
        std::chrono::milliseconds lastRequestTime{1000};

        /// Counts connections and exchanges; never null.
        std::shared_ptr<Admission> admission = std::make_shared<Admission>();

        /// Slows down guessing of passwords; never null.
        std::shared_ptr<FailedLogins> failedLogins = std::make_shared<FailedLogins>();
    };

    /// Starts to serve. Throws std::runtime_error when a thread cannot be started; then none is left running.
    /// io  run by the server's threads only; must outlive the server, and the answers that handlers still hold back
    Server(boost::asio::io_context& io, Listener listener, Router router, Options const& options);

    /// Stop().
    ~Server();

    Server(Server const&) = delete;
    Server& operator=(Server const&) = delete;

    /// Bounds for the requests that start from now on.
    void SetLimits(Limits const& limits);

    /// Accepts connections on another listener instead of the present one. Existing connections close after their
    /// current request.
    void SetListener(Listener listener);

    /// Certificate and key for new connections; null: plain HTTP. When the protocol changes between plain HTTP and TLS,
    /// existing connections close after their current request.
    void SetTls(std::shared_ptr<boost::asio::ssl::context> tls);

    /// Accepts no more connections, closes those that wait for a request, and keeps the others only until their current
    /// request is answered. Doing so twice is harmless.
    void StopAccepting();

    /// StopAccepting; waits for the exchanges under way, `grace` at most; then closes every connection and ends the
    /// threads. Stopping twice is harmless.
    void Stop(std::chrono::milliseconds grace = std::chrono::milliseconds(300));

private:
    class Impl;
    std::unique_ptr<Impl> impl;
};

} // namespace zarn::host::web
