#include "host/web/acceptor.h"

#include <boost/asio/bind_executor.hpp>
#include <boost/asio/post.hpp>

#include <chrono>
#include <exception>
#include <future>
#include <utility>

namespace zarn::host::web {

namespace asio = boost::asio;

namespace {

/// Pause after a connection could not be accepted, for instance because the process has too many files open.
constexpr std::chrono::milliseconds PauseAfterFailure{100};

/// More than can wait to be accepted: a limit to what closing takes.
constexpr int MostWaiting = 8192;

} // namespace

Acceptor::Acceptor(asio::io_context& io, Listener listener, Handler handler)
    : io(io), acceptor(listener.Release()), pause(acceptor.get_executor()), handler(std::move(handler)) {}

void Acceptor::Start() {
    asio::post(acceptor.get_executor(), [self = shared_from_this()] { self->Accept(); });
}

void Acceptor::Close() {
    auto over = std::make_shared<std::promise<void>>();
    auto const future = over->get_future();
    // The future is ready when the promise's last owner is gone, whatever happens to it.
    asio::post(acceptor.get_executor(), [self = shared_from_this(), over = std::move(over)] {
        if (self->acceptor.is_open() || self->accepting) self->closing.push_back(over);
        if (!self->acceptor.is_open()) return;
        self->pause.cancel();
        try {
            self->AcceptWaiting();
        } catch (std::exception const& error) {
            self->logger.Log(logging::Level::Error, "Connections were lost when a port was closed: %0%", error.what());
        }
        boost::system::error_code ignored;
        self->acceptor.close(ignored);
        if (!self->accepting) self->closing.clear();
    });
    future.wait();
}

void Acceptor::Accept() {
    accepting = true;
    acceptor.async_accept(
        asio::make_strand(io),
        asio::bind_executor(acceptor.get_executor(),
                            [self = shared_from_this()](boost::system::error_code error, Socket socket) {
                                self->OnAccepted(error, std::move(socket));
                            }));
}

/// Accepts those who have connected already: they may have sent a request, and closing the port would reset them.
void Acceptor::AcceptWaiting() {
    boost::system::error_code error;
    acceptor.non_blocking(true, error);
    for (int i = 0; i < MostWaiting && !error; ++i) {
        Socket socket(asio::make_strand(io));
        acceptor.accept(socket, error);
        if (!error) handler(std::move(socket));
    }
}

void Acceptor::OnAccepted(boost::system::error_code error, Socket socket) {
    accepting = false;
    auto const closed = std::exchange(closing, {});
    bool const open = acceptor.is_open();
    if (error) {
        if (open) OnError(error);
        return;
    }
    if (open) Accept();
    handler(std::move(socket));
}

void Acceptor::OnError(boost::system::error_code error) {
    if (error == asio::error::connection_aborted) return Accept();
    failures.Log(logging::Level::Error, "Cannot accept a connection: %0%", error.message());
    pause.expires_after(PauseAfterFailure);
    pause.async_wait([self = shared_from_this()](boost::system::error_code cancelled) {
        if (!cancelled && self->acceptor.is_open()) self->Accept();
    });
}

} // namespace zarn::host::web
