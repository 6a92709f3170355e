#pragma once

#include "host/web/connection.h"
#include "host/web/listener.h"

#include <zarn/logging/limited_logger.h>

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/steady_timer.hpp>

#include <functional>
#include <memory>

namespace zarn::host::web {

/// Accepts the connections of one listener until it is closed, whatever goes wrong with some of them. Its pending
/// operations keep it alive.
class Acceptor : public std::enable_shared_from_this<Acceptor> {
public:
    /// Gets each connection, one at a time.
    using Handler = std::function<void(Socket)>;

    Acceptor(boost::asio::io_context& io, Listener listener, Handler handler);

    Acceptor(Acceptor const&) = delete;
    Acceptor& operator=(Acceptor const&) = delete;

    /// Starts to accept. To be called once. Thread: any.
    void Start();

    /// Closes the port. Connections made before are still handed to the handler, which is not called after this has
    /// returned. A client that connects meanwhile may be reset. Closing twice is harmless.
    /// Thread: any but those that run the I/O context, which must be running.
    void Close();

private:
    void AwaitConnections();
    boost::system::error_code AcceptWaiting(int most) noexcept;

    boost::asio::io_context& io;
    boost::asio::ip::tcp::acceptor acceptor; ///< used on its own strand only
    boost::asio::steady_timer pause;
    Handler const handler;
    logging::LimitedLogger failures{"zarn.host.web"};
};

} // namespace zarn::host::web
