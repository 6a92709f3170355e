#include "host/web/server.h"

#include "host/web/connection.h"
#include "host/web/connection_context.h"
#include "host/web/dispatcher.h"
#include "host/web/pending_ticker.h"
#include "host/web/repeating_timer.h"
#include "host/web/response_head.h"

#include <zarn/logging/logger.h>
#include <zarn/logging/rate_limit.h>

#include <boost/asio/bind_executor.hpp>
#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/use_future.hpp>

#include <algorithm>
#include <exception>
#include <future>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

namespace zarn::host::web {
namespace {

namespace asio = boost::asio;
using asio::ip::tcp;
using logging::Level;
using namespace std::chrono_literals;

/// How often the deadlines of the connections are looked at.
constexpr std::chrono::milliseconds SweepInterval = 250ms;

/// Pause after a connection could not be accepted, for instance because the process has too many files open.
constexpr auto AcceptPause = 100ms;

/// Tells a client that there is no room, if that can be done without waiting.
void Turn(Socket socket) {
    Reply const reply = MakeTextReply(Reply::Status::ServiceUnavailable, "Too many connections; try again later.",
                                      {{"Retry-After", "1"}});
    std::string const text = MakeResponseHead(reply, {1, false}).append(reply.body.front()->ToStringView());
    boost::system::error_code ignored;
    socket.non_blocking(true, ignored);
    socket.write_some(asio::buffer(text), ignored);
    socket.shutdown(tcp::socket::shutdown_both, ignored);
}

} // namespace

class Server::Impl {
public:
    Impl(asio::io_context& io, Listener listener, Router router, Options const& options)
        : io(io),
          acceptor(listener.Release()),
          tls(options.tls),
          admission(options.admission),
          failedLogins(options.failedLogins),
          ticker(io),
          dispatcher(std::move(router), ticker, *admission, *failedLogins),
          context(std::make_shared<ConnectionContext>(dispatcher, options.limits)),
          acceptTimer(acceptor.get_executor()),
          sweeper(acceptor.get_executor(), SweepInterval, "The deadlines of the connections were not looked at",
                  [this] { Sweep(); }),
          work(io.get_executor()) {}

    ~Impl() { Stop(0ms); }

    Impl(Impl const&) = delete;
    Impl& operator=(Impl const&) = delete;

    /// Begins to serve; to be called once. Throws std::runtime_error when a thread cannot be started.
    void StartThreads(unsigned count) try {
        for (unsigned i = 0; i < count; ++i) threads.emplace_back([this] { Run(); });
        asio::post(acceptor.get_executor(), [this] {
            Accept();
            sweeper.Start();
        });

    } catch (std::system_error const& error) {

        throw std::runtime_error(std::string("a thread of the web server cannot be started: ") + error.what());
    }

    void SetLimits(Limits const& limits) { context->SetLimits(limits); }

    void SetTls(std::shared_ptr<asio::ssl::context> value) {
        std::lock_guard const lock(mutex);
        if (tls) tls = std::move(value);
    }

    void StopAccepting();
    void Stop(std::chrono::milliseconds grace);

private:
    void Run();
    void Accept();
    void OnAccepted(Socket socket);
    void OnAcceptError(boost::system::error_code error);
    void Sweep();
    std::vector<std::shared_ptr<Connection>> TakeLiving();

    asio::io_context& io;
    tcp::acceptor acceptor; ///< used on its own strand only
    logging::Logger logger{"zarn.host.web"};
    logging::RateLimit refused;
    logging::RateLimit acceptFailed;

    std::mutex mutex; ///< guards the members up to the next blank line
    std::shared_ptr<asio::ssl::context> tls;
    std::vector<std::weak_ptr<Connection>> connections;

    std::shared_ptr<Admission> admission;
    std::shared_ptr<FailedLogins> failedLogins;
    PendingTicker ticker;
    Dispatcher dispatcher;
    std::shared_ptr<ConnectionContext> context;
    asio::steady_timer acceptTimer;
    RepeatingTimer sweeper;
    asio::executor_work_guard<asio::io_context::executor_type> work;
    std::vector<std::thread> threads;
};

void Server::Impl::Run() {
    for (;;) {
        try {
            io.run();
            return;
        } catch (std::exception const& error) {
            logger.Log(Level::Error, "A connection failed: %0%", error.what());
        }
    }
}

void Server::Impl::Accept() {
    acceptor.async_accept(
        asio::make_strand(io),
        asio::bind_executor(acceptor.get_executor(), [this](boost::system::error_code error, Socket socket) {
            if (error) return OnAcceptError(error);
            Accept();
            OnAccepted(std::move(socket));
        }));
}

void Server::Impl::OnAccepted(Socket socket) {
    boost::system::error_code error;
    auto const peer = socket.remote_endpoint(error).address();
    if (error) return; // gone already
    auto const limits = context->GetLimits();
    auto slot = admission->Connect(peer, limits);
    std::shared_ptr<asio::ssl::context> secure;
    {
        std::lock_guard const lock(mutex);
        secure = tls;
    }
    if (!slot) {
        if (auto const suppressed = refused.Admit()) {
            logger.Log(Level::Warning, "Refused a connection of %0%: too many are open (%1% more refusals before)",
                       peer.to_string(), *suppressed);
        }
        if (!secure) Turn(std::move(socket));
        return;
    }
    socket.set_option(tcp::no_delay(true), error);
    auto const connection = MakeConnection({std::move(socket), peer, std::move(slot), context}, secure);
    {
        std::lock_guard const lock(mutex);
        connections.push_back(connection);
    }
    connection->Start();
}

void Server::Impl::OnAcceptError(boost::system::error_code error) {
    if (error == asio::error::operation_aborted || !acceptor.is_open()) return;
    if (error == asio::error::connection_aborted) return Accept();
    if (auto const suppressed = acceptFailed.Admit()) {
        logger.Log(Level::Error, "Cannot accept a connection: %0% (%1% more before)", error.message(), *suppressed);
    }
    acceptTimer.expires_after(AcceptPause);
    acceptTimer.async_wait([this](boost::system::error_code cancelled) {
        if (!cancelled) Accept();
    });
}

std::vector<std::shared_ptr<Connection>> Server::Impl::TakeLiving() {
    std::vector<std::shared_ptr<Connection>> living;
    std::lock_guard const lock(mutex);
    living.reserve(connections.size()); // nothing may be thrown while elements are on the move
    std::erase_if(connections, [&](auto const& weak) {
        auto connection = weak.lock();
        if (connection) living.push_back(std::move(connection));
        return weak.expired();
    });
    return living;
}

void Server::Impl::Sweep() {
    auto const now = Connection::Clock::now();
    for (auto const& connection : TakeLiving()) connection->CheckDeadline(now);
}

void Server::Impl::StopAccepting() {
    if (threads.empty()) return;
    context->SetFinishing();
    asio::post(acceptor.get_executor(), asio::use_future([this] {
                   boost::system::error_code ignored;
                   acceptor.close(ignored);
                   acceptTimer.cancel();
               }))
        .get();
    for (auto const& connection : TakeLiving()) connection->Finish();
}

void Server::Impl::Stop(std::chrono::milliseconds grace) {
    if (threads.empty()) return;
    StopAccepting();
    auto const deadline = Connection::Clock::now() + grace;
    auto const busy = [&] { return admission->GetConnections() > 0; };
    while (busy() && Connection::Clock::now() < deadline) std::this_thread::sleep_for(5ms);
    for (auto const& connection : TakeLiving()) connection->Close();
    asio::post(acceptor.get_executor(), [this] { sweeper.Stop(); });
    work.reset();
    io.stop();
    for (auto& thread : threads) thread.join();
    threads.clear();
}

Server::Server(asio::io_context& io, Listener listener, Router router, Options const& options)
    : impl(std::make_unique<Impl>(io, std::move(listener), std::move(router), options)) {
    impl->StartThreads(std::max(options.threads, 1U));
}

Server::~Server() = default;

void Server::SetLimits(Limits const& limits) { impl->SetLimits(limits); }

void Server::SetTls(std::shared_ptr<asio::ssl::context> tls) { impl->SetTls(std::move(tls)); }

void Server::StopAccepting() { impl->StopAccepting(); }

void Server::Stop(std::chrono::milliseconds grace) { impl->Stop(grace); }

} // namespace zarn::host::web
