#include "host/web/acceptor.h"

#include <boost/asio/packaged_task.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/strand.hpp>
#include <boost/system/errc.hpp>

#include <chrono>
#include <exception>
#include <future>
#include <utility>

namespace zarn::host::web {

namespace asio = boost::asio;

namespace {

/// Pause after a connection could not be accepted, for instance because the process has too many files open.
constexpr std::chrono::milliseconds PauseAfterFailure{100};

/// Connections that are accepted before other handlers get their turn.
constexpr int MostAtOnce = 16;

/// More connections than can wait to be accepted: bounds the time that closing takes.
constexpr int MostWaiting = 8192;

/// Whether the client of a waiting connection has gone: the next one can be accepted.
bool IsLost(boost::system::error_code error) {
    return error == asio::error::connection_aborted || error == boost::system::errc::protocol_error;
}

} // namespace

Acceptor::Acceptor(asio::io_context& io, Listener listener, Handler handler)
    : io(io), acceptor(listener.Release()), pause(acceptor.get_executor()), handler(std::move(handler)) {
    acceptor.non_blocking(true);
    // Without this, accepting a connection whose client has gone waits for the next one.
    acceptor.set_option(asio::socket_base::enable_connection_aborted(true));
}

void Acceptor::Start() {
    asio::post(acceptor.get_executor(), [self = shared_from_this()] { self->AwaitConnections(); });
}

void Acceptor::Close() {
    auto const close = [self = shared_from_this()] {
        // Clients that have connected already may have sent a request, and closing the port would reset them.
        if (self->acceptor.is_open()) self->AcceptWaiting(MostWaiting);
        boost::system::error_code ignored;
        self->acceptor.close(ignored);
        self->pause.cancel();
    };
    asio::post(acceptor.get_executor(), std::packaged_task<void()>(close)).wait();
}

void Acceptor::AwaitConnections() {
    acceptor.async_wait(acceptor.wait_read, [self = shared_from_this()](boost::system::error_code) {
        if (!self->acceptor.is_open()) return;
        auto const error = self->AcceptWaiting(MostAtOnce);
        if (!error || error == asio::error::would_block) return self->AwaitConnections();
        self->failures.Log(logging::Level::Error, "Cannot accept a connection: %0%", error.message());
        self->pause.expires_after(PauseAfterFailure);
        self->pause.async_wait([self](boost::system::error_code) {
            if (self->acceptor.is_open()) self->AwaitConnections();
        });
    });
}

/// Accepts connections that wait, `most` at most. Returns why it stopped before.
boost::system::error_code Acceptor::AcceptWaiting(int most) noexcept {
    boost::system::error_code error;
    for (int i = 0; i < most && !error; ++i) {
        error = asio::error::no_memory; // unless a socket can be made
        try {
            Socket socket(asio::make_strand(io));
            acceptor.accept(socket, error);
            if (!error) handler(std::move(socket));
            if (IsLost(error)) error.clear();
        } catch (std::exception const& failure) {
            if (!error) failures.Log(logging::Level::Error, "A connection was lost: %0%", failure.what());
        }
    }
    return error;
}

} // namespace zarn::host::web
