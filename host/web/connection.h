#pragma once

#include "host/web/admission.h"
#include "host/web/limits.h"
#include "host/web/living_connections.h"

#include <boost/asio/basic_stream_socket.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/address.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/ssl/context.hpp>
#include <boost/asio/strand.hpp>

#include <atomic>
#include <chrono>
#include <memory>
#include <mutex>

namespace zarn::host::web {

class Dispatcher;

/// A socket whose handlers run one at a time.
using Socket =
    boost::asio::basic_stream_socket<boost::asio::ip::tcp, boost::asio::strand<boost::asio::io_context::executor_type>>;

/// One client's connection: reads requests one after the other, has each answered, and writes the answers. It keeps
/// itself alive for as long as there is something to read, write or wait for.
class Connection : public std::enable_shared_from_this<Connection> {
public:
    using Clock = std::chrono::steady_clock;

    Connection() = default;
    virtual ~Connection() = default;
    Connection(Connection const&) = delete;
    Connection& operator=(Connection const&) = delete;

    /// Starts to serve. To be called once.
    virtual void Start() = 0;

    /// Whether the deadline of the present operation has passed: CheckDeadline() is due. Thread: any.
    bool IsOverdue(Clock::time_point now) const noexcept { return now >= deadline.load(); }

    /// Enforces the deadline of the present operation: closes an idle connection or one whose client reads too slowly,
    /// answers 408 to a client that sends too slowly. Has to be called a few times a second while it is overdue.
    /// Thread: any.
    virtual void CheckDeadline() = 0;

    /// Closes the connection after its present request, or after one that has already arrived. A connection that has
    /// received nothing yet is given a second for its first request, unless the whole server ends. Thread: any.
    virtual void Finish() = 0;

    /// Closes the connection now. Thread: any.
    virtual void Close() = 0;

protected:
    std::atomic<Clock::time_point> deadline = Clock::time_point::max(); ///< of the present operation
};

/// What all connections of a server share. Thread: any.
class ConnectionContext {
public:
    /// dispatcher       answers the requests; must outlive the context
    /// lastRequestTime  how long a connection that is about to end waits for a request that is already on its way
    ConnectionContext(Dispatcher& dispatcher, Limits const& limits, std::chrono::milliseconds lastRequestTime)
        : dispatcher(dispatcher), lastRequestTime(lastRequestTime), limits(limits) {}

    Dispatcher& GetDispatcher() const noexcept { return dispatcher; }

    LivingConnections& GetLiving() noexcept { return living; }

    std::chrono::milliseconds GetLastRequestTime() const noexcept { return lastRequestTime; }

    Limits GetLimits() const {
        std::lock_guard const lock(mutex);
        return limits;
    }

    void SetLimits(Limits const& value) {
        std::lock_guard const lock(mutex);
        limits = value;
    }

    /// From now on no connection is kept for another request.
    void SetFinishing() noexcept { finishing = true; }

    bool IsFinishing() const noexcept { return finishing; }

private:
    Dispatcher& dispatcher;
    LivingConnections living;
    std::chrono::milliseconds const lastRequestTime;
    std::atomic<bool> finishing = false;
    mutable std::mutex mutex; ///< guards limits
    Limits limits;
};

/// What a connection is made of.
struct Accepted {
    Socket socket;
    boost::asio::ip::address peer;
    Admission::Slot slot;                       ///< held as long as the connection lives
    std::shared_ptr<ConnectionContext> context; ///< never null
};

/// A connection that speaks HTTP, or with `tls` HTTP over TLS.
std::shared_ptr<Connection> MakeConnection(Accepted accepted, std::shared_ptr<boost::asio::ssl::context> const& tls);

} // namespace zarn::host::web
