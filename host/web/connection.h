#pragma once

#include "host/web/admission.h"
#include "host/web/connection_context.h"

#include <boost/asio/basic_stream_socket.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/address.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/ssl/context.hpp>
#include <boost/asio/strand.hpp>

#include <chrono>
#include <memory>

namespace zarn::host::web {

/// A socket whose handlers run one at a time.
using Socket =
    boost::asio::basic_stream_socket<boost::asio::ip::tcp, boost::asio::strand<boost::asio::io_context::executor_type>>;

/// One client's connection: reads requests one after the other, has each answered, and writes the answers. It keeps
/// itself alive for as long as there is something to read, write or wait for.
class Connection {
public:
    using Clock = std::chrono::steady_clock;

    Connection() = default;
    virtual ~Connection() = default;
    Connection(Connection const&) = delete;
    Connection& operator=(Connection const&) = delete;

    /// Begins to serve. To be called once.
    virtual void Start() = 0;

    /// Ends what takes longer than it may: an idle connection or a slow reader is closed, a slow sender is answered
    /// 408. Has to be called again and again, a few times a second. Thread: any.
    virtual void CheckDeadline(Clock::time_point now) = 0;

    /// Closes the connection when the present request is answered, or one that has come meanwhile. One on which nothing
    /// has come yet is given a second for its first request, unless the whole server ends. Thread: any.
    virtual void Finish() = 0;

    /// Closes the connection now. Thread: any.
    virtual void Close() = 0;
};

/// What the server knows about a connection when it has accepted it.
struct Accepted {
    Socket socket;
    boost::asio::ip::address peer;
    Admission::Slot slot;                       ///< held as long as the connection lives
    std::shared_ptr<ConnectionContext> context; ///< never null
};

/// A connection that speaks HTTP, or with `tls` HTTP over TLS.
std::shared_ptr<Connection> MakeConnection(Accepted accepted, std::shared_ptr<boost::asio::ssl::context> const& tls);

} // namespace zarn::host::web
