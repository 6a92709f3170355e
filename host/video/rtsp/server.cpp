#include "host/video/rtsp/server.h"

#include "host/video/log.h"
#include "host/video/rtsp/connection.h"
#include "host/video/rtsp/mount.h"
#include "host/video/rtsp/site.h"
#include "host/video/rtsp/worker.h"

#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/packaged_task.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/system/system_error.hpp>

#include <chrono>
#include <exception>
#include <future>
#include <stdexcept>
#include <thread>
#include <utility>
#include <vector>

namespace zarn::host::video::rtsp {

namespace asio = boost::asio;
using asio::ip::tcp;

namespace {

/// They only move bytes: more would compete with those that make the video.
constexpr std::size_t WorkerCount = 2;

/// Pause after a connection could not be accepted, for instance because the process has too many files open.
constexpr std::chrono::milliseconds PauseAfterFailure{100};

} // namespace

class Server::Impl {
public:
    Impl(std::uint16_t wanted, std::shared_ptr<FailedLogins> failedLogins)
        : workers(MakeWorkers()),
          acceptor(workers.front()->GetContext()),
          pause(workers.front()->GetContext()),
          site(std::make_shared<Site>(List(workers), std::move(failedLogins))) {
        Bind(wanted);
        for (auto const& worker : workers) worker->Start();
    }

    ~Impl() {
        // The acceptor belongs to its worker.
        asio::post(acceptor.get_executor(), std::packaged_task<void()>([this] {
                       boost::system::error_code ignored;
                       acceptor.close(ignored);
                       pause.cancel();
                   }))
            .wait();
        if (site->CountConnections() > 0) std::this_thread::sleep_for(Session::Farewell);
        for (auto const& worker : workers) worker->Stop();
    }

    Impl(Impl const&) = delete;
    Impl& operator=(Impl const&) = delete;

    std::uint16_t GetPort() const { return port; }

    Site& GetSite() { return *site; }

    void Start() {
        if (std::exchange(isStarted, true)) return;
        asio::post(acceptor.get_executor(), [this] { Accept(); });
    }

    void Mount(std::string const& id, std::shared_ptr<Stream> const& stream) {
        rtsp::Mount::Hubs hubs;
        for (auto const& worker : workers) {
            hubs.push_back(std::make_shared<Hub>(worker->GetContext(), stream, 0));
            stream->Subscribe(hubs.back());
        }
        site->GetMounts().Set(std::make_shared<rtsp::Mount const>(id, std::vector<rtsp::Mount::Hubs>{std::move(hubs)}));
    }

private:
    using Workers = std::vector<std::unique_ptr<Worker>>;

    static Workers MakeWorkers() {
        Workers made;
        for (std::size_t index = 0; index < WorkerCount; ++index) made.push_back(std::make_unique<Worker>(index));
        return made;
    }

    static std::vector<Worker*> List(Workers const& workers) {
        std::vector<Worker*> list;
        for (auto const& worker : workers) list.push_back(worker.get());
        return list;
    }

    void Bind(std::uint16_t wanted) try {
        acceptor.open(tcp::v4());
        // A restart must not have to wait for the connections of the last run to be forgotten.
        acceptor.set_option(tcp::acceptor::reuse_address(true));
        acceptor.bind(tcp::endpoint(tcp::v4(), wanted));
        acceptor.listen(asio::socket_base::max_listen_connections);
        port = acceptor.local_endpoint().port();

    } catch (boost::system::system_error const& error) {

        throw std::runtime_error("RTSP port " + std::to_string(wanted) + " cannot be bound: " + error.code().message());
    }

    /// Each worker gets every second connection.
    void Accept() try {
        auto& worker = *workers[accepted++ % workers.size()];
        acceptor.async_accept(worker.GetContext(),
                              [this, &worker](boost::system::error_code error, tcp::socket socket) {
                                  if (!acceptor.is_open()) return;
                                  if (!error) Serve(std::move(socket), worker);
                                  if (!error || error == asio::error::connection_aborted) return Accept();
                                  AcceptLater(error.message());
                              });

    } catch (std::exception const& error) {

        AcceptLater(error.what());
    }

    void AcceptLater(std::string const& reason) {
        site->GetRefusals().Log(logging::Level::Error, "Cannot accept an RTSP connection: %0%", reason);
        pause.expires_after(PauseAfterFailure);
        pause.async_wait([this](boost::system::error_code) {
            if (acceptor.is_open()) Accept();
        });
    }

    /// A connection that cannot be served must not keep the next ones out.
    void Serve(tcp::socket socket, Worker& worker) try {
        boost::system::error_code error;
        auto const peer = socket.remote_endpoint(error).address();
        if (error) return; // already disconnected
        auto slot = site->AddConnection(peer);
        if (!slot) return;
        auto connection = std::make_shared<Connection>(
            site, worker, Connection::Accepted{std::move(socket), peer, std::move(slot), site->GetAuthentication()});
        asio::post(worker.GetContext(), [connection = std::move(connection)] { connection->Start(); });

    } catch (std::exception const& error) {

        site->GetRefusals().Log(logging::Level::Error, "An RTSP connection was lost: %0%", error.what());
    }

    Workers workers; ///< first, because everything else lives on them
    tcp::acceptor acceptor;
    asio::steady_timer pause;
    std::shared_ptr<Site> site;
    std::uint16_t port = 0;
    std::size_t accepted = 0;
    bool isStarted = false;
};

Server::Server(std::uint16_t port, std::shared_ptr<FailedLogins> failedLogins)
    : impl(std::make_unique<Impl>(port, std::move(failedLogins))) {}

Server::~Server() = default;

std::uint16_t Server::GetPort() const { return impl->GetPort(); }

void Server::Start() { impl->Start(); }

void Server::SetAuthentication(bool authenticate, std::string const& ha1) {
    impl->GetSite().SetAuthentication(authenticate, ha1);
}

void Server::SetLimits(ConnectionLimits const& limits) { impl->GetSite().SetLimits(limits); }

void Server::Mount(std::string const& id, std::shared_ptr<Stream> const& stream) { impl->Mount(id, stream); }

void Server::Unmount(std::string const& id) {
    if (auto const mount = impl->GetSite().GetMounts().Remove(id)) mount->End();
}

} // namespace zarn::host::video::rtsp
