#include "host/web/server.h"

#include "host/web/acceptor.h"
#include "host/web/connection.h"
#include "host/web/dispatcher.h"
#include "host/web/repeating_timer.h"
#include "host/web/response_head.h"

#include <zarn/logging/limited_logger.h>

#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/strand.hpp>

#include <algorithm>
#include <exception>
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

/// How often the deadlines of the connections are checked.
constexpr std::chrono::milliseconds SweepInterval = 250ms;

/// Answers a client 503 before closing its connection, if that is possible without waiting.
void RefuseConnection(Socket socket) {
    Reply const reply =
        MakeTextReply(Status::ServiceUnavailable, "Too many connections; try again later.", {{"Retry-After", "1"}});
    std::string const text = MakeResponseHead(reply, {1, false}).append(reply.GetBody().front()->ToStringView());
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
          acceptor(MakeAcceptor(std::move(listener))),
          tls(options.tls),
          admission(options.admission),
          failedLogins(options.failedLogins),
          dispatcher(std::move(router), *admission, *failedLogins),
          context(std::make_shared<ConnectionContext>(dispatcher, options.limits, options.lastRequestTime)),
          sweeping(asio::make_strand(io)),
          sweeper(sweeping, SweepInterval, "Checking the deadlines of the connections failed", [this] { Sweep(); }),
          work(io.get_executor()) {}

    ~Impl() { Stop(0ms); }

    Impl(Impl const&) = delete;
    Impl& operator=(Impl const&) = delete;

    /// Begins to serve; to be called once. Throws std::runtime_error when a thread cannot be started.
    void StartThreads(unsigned count) try {
        for (unsigned i = 0; i < count; ++i) threads.emplace_back([this] { Run(); });
        acceptor->Start();
        asio::post(sweeping, [this] { sweeper.Start(); });

    } catch (std::system_error const& error) {

        throw std::runtime_error(std::string("a thread of the web server cannot be started: ") + error.what());
    }

    void SetLimits(Limits const& limits) { context->SetLimits(limits); }

    void SetListener(Listener listener) {
        if (threads.empty()) return;
        auto const former = std::exchange(acceptor, MakeAcceptor(std::move(listener)));
        acceptor->Start();
        former->Close();
        FinishAll();
    }

    void SetTls(std::shared_ptr<asio::ssl::context> value) {
        {
            std::lock_guard const lock(mutex);
            std::swap(tls, value);
            if (!tls == !value) return;
        }
        FinishAll();
    }

    void StopAccepting();
    void Stop(std::chrono::milliseconds grace);

private:
    void Run();
    void ReportFailure(char const* why) noexcept;
    std::shared_ptr<Acceptor> MakeAcceptor(Listener listener);
    void OnAccepted(Socket socket);
    void Sweep();
    void FinishAll();

    asio::io_context& io;
    std::shared_ptr<Acceptor> acceptor;
    logging::Logger logger{"zarn.host.web"};
    logging::LimitedLogger refusals{"zarn.host.web"};

    std::mutex mutex; ///< guards tls
    std::shared_ptr<asio::ssl::context> tls;

    std::shared_ptr<Admission> admission;
    std::shared_ptr<FailedLogins> failedLogins;
    Dispatcher dispatcher;
    std::shared_ptr<ConnectionContext> context;
    asio::strand<asio::io_context::executor_type> sweeping;
    RepeatingTimer sweeper; ///< used on that strand only
    asio::executor_work_guard<asio::io_context::executor_type> work;
    std::vector<std::thread> threads;
};

void Server::Impl::Run() {
    for (;;) {
        try {
            io.run();
            return;
        } catch (std::exception const& error) {
            ReportFailure(error.what());
        }
    }
}

void Server::Impl::ReportFailure(char const* why) noexcept {
    try {
        logger.Log(Level::Error, "A connection failed: %0%", why);
    } catch (...) { // no memory for the line: the thread matters more
    }
}

std::shared_ptr<Acceptor> Server::Impl::MakeAcceptor(Listener listener) {
    return std::make_shared<Acceptor>(io, std::move(listener),
                                      [this](Socket socket) { OnAccepted(std::move(socket)); });
}

void Server::Impl::OnAccepted(Socket socket) {
    boost::system::error_code error;
    auto const peer = socket.remote_endpoint(error).address();
    if (error) return; // already disconnected
    auto const limits = context->GetLimits();
    auto slot = admission->Connect(peer, limits);
    std::shared_ptr<asio::ssl::context> secure;
    {
        std::lock_guard const lock(mutex);
        secure = tls;
    }
    if (!slot) {
        refusals.Log(Level::Warning, "Refused a connection from %0%: too many are open", peer);
        if (!secure) RefuseConnection(std::move(socket));
        return;
    }
    socket.set_option(tcp::no_delay(true), error);
    auto const connection = MakeConnection({std::move(socket), peer, std::move(slot), context}, secure);
    connection->Start();
    bool protocolChanged = false;
    {
        std::lock_guard const lock(mutex);
        protocolChanged = !tls != !secure;
    }
    if (protocolChanged) connection->Finish(); // the change missed it, since it was not listed yet
}

void Server::Impl::Sweep() {
    for (auto const& connection : context->GetLiving().GetOverdue(Connection::Clock::now()))
        connection->CheckDeadline();
}

void Server::Impl::FinishAll() {
    for (auto const& connection : context->GetLiving().GetAll()) connection->Finish();
}

void Server::Impl::StopAccepting() {
    if (threads.empty()) return;
    context->SetFinishing();
    acceptor->Close();
    FinishAll();
}

void Server::Impl::Stop(std::chrono::milliseconds grace) {
    if (threads.empty()) return;
    StopAccepting();
    auto const deadline = Connection::Clock::now() + grace;
    auto const busy = [&] { return admission->GetConnections() > 0; };
    while (busy() && Connection::Clock::now() < deadline) std::this_thread::sleep_for(5ms);
    for (auto const& connection : context->GetLiving().GetAll()) connection->Close();
    asio::post(sweeping, [this] { sweeper.Stop(); });
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

void Server::SetListener(Listener listener) { impl->SetListener(std::move(listener)); }

void Server::SetTls(std::shared_ptr<asio::ssl::context> tls) { impl->SetTls(std::move(tls)); }

void Server::StopAccepting() { impl->StopAccepting(); }

void Server::Stop(std::chrono::milliseconds grace) { impl->Stop(grace); }

} // namespace zarn::host::web
