#include "host/web/acceptor.h"

#include <boost/asio/bind_executor.hpp>
#include <boost/asio/post.hpp>
#include <linux/filter.h>
#include <sys/socket.h>

#include <array>
#include <chrono>
#include <exception>
#include <future>
#include <utility>

namespace zarn::host::web {

namespace asio = boost::asio;

namespace {

/// Pause after a connection could not be accepted, for instance because the process has too many files open.
constexpr std::chrono::milliseconds PauseAfterFailure{100};

/// How long those who are about to connect when the port is to be closed are given to get through.
constexpr std::chrono::milliseconds HandshakeTime{10};

/// More than can wait to be accepted: a limit to what closing takes.
constexpr int MostWaiting = 8192;

/// Leaves the first segment of whoever connects from now on unanswered, so that nobody connects between the last look
/// and the closing of the port. Who tries is refused then, when his system tries again.
void DropNewcomers(int listening) {
    constexpr unsigned FlagsOffset = 13; // in the TCP header (RFC 9293, 3.1)
    constexpr unsigned SynAndAck = 0x12;
    constexpr unsigned Syn = 0x02;
    std::array<sock_filter, 5> program{{BPF_STMT(BPF_LD | BPF_B | BPF_ABS, FlagsOffset),
                                        BPF_STMT(BPF_ALU | BPF_AND | BPF_K, SynAndAck),
                                        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, Syn, 0, 1), BPF_STMT(BPF_RET | BPF_K, 0),
                                        BPF_STMT(BPF_RET | BPF_K, 0xffffffff)}};
    sock_fprog const filter{.len = program.size(), .filter = program.data()};
    // Where it cannot be had, a connection may be reset in that moment, as it always could.
    setsockopt(listening, SOL_SOCKET, SO_ATTACH_FILTER, &filter, sizeof(filter));
}

} // namespace

Acceptor::Acceptor(asio::io_context& io, Listener listener, Handler handler)
    : io(io),
      acceptor(listener.Release()),
      pause(acceptor.get_executor()),
      settling(acceptor.get_executor()),
      handler(std::move(handler)) {}

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
        DropNewcomers(self->acceptor.native_handle());
        self->settling.expires_after(HandshakeTime);
        self->settling.async_wait([self](boost::system::error_code) { self->OnSettled(); });
    });
    future.wait();
}

void Acceptor::OnSettled() {
    if (acceptor.is_open()) {
        pause.cancel();
        try {
            AcceptWaiting();
        } catch (std::exception const& error) {
            logger.Log(logging::Level::Error, "Connections were lost when a port was closed: %0%", error.what());
        }
        boost::system::error_code ignored;
        acceptor.close(ignored);
    }
    if (!accepting) closing.clear();
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
