#include "host/web/acceptor.h"

#include <boost/asio/bind_executor.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/use_future.hpp>

#include <chrono>
#include <future>
#include <utility>

namespace zarn::host::web {

namespace asio = boost::asio;

namespace {

/// Pause after a connection could not be accepted, for instance because the process has too many files open.
constexpr std::chrono::milliseconds PauseAfterFailure{100};

} // namespace

Acceptor::Acceptor(asio::io_context& io, Listener listener, Handler handler)
    : io(io), acceptor(listener.Release()), pause(acceptor.get_executor()), handler(std::move(handler)) {}

void Acceptor::Start() {
    asio::post(acceptor.get_executor(), [self = shared_from_this()] { self->Accept(); });
}

void Acceptor::Close() {
    asio::post(acceptor.get_executor(), asio::use_future([this] {
                   boost::system::error_code ignored;
                   acceptor.close(ignored);
                   pause.cancel();
               }))
        .get();
}

void Acceptor::Accept() {
    acceptor.async_accept(
        asio::make_strand(io),
        asio::bind_executor(acceptor.get_executor(),
                            [self = shared_from_this()](boost::system::error_code error, Socket socket) {
                                if (!self->acceptor.is_open()) return;
                                if (error) return self->OnError(error);
                                self->Accept();
                                self->handler(std::move(socket));
                            }));
}

void Acceptor::OnError(boost::system::error_code error) {
    if (error == asio::error::connection_aborted) return Accept();
    if (auto const suppressed = failures.Admit()) {
        logger.Log(logging::Level::Error, "Cannot accept a connection: %0% (%1% more before)", error.message(),
                   *suppressed);
    }
    pause.expires_after(PauseAfterFailure);
    pause.async_wait([self = shared_from_this()](boost::system::error_code cancelled) {
        if (!cancelled && self->acceptor.is_open()) self->Accept();
    });
}

} // namespace zarn::host::web
