#pragma once

#include "host/access/failed_logins.h"
#include "host/events/mqtt_client.h"
#include "host/events/queue_watch.h"
#include "host/preparation.h"
#include "host/routes/onvif_route.h"
#include "host/video/engine.h"
#include "host/web/admission.h"
#include "host/web/challenges.h"
#include "host/web/repeating_timer.h"
#include "host/web/server.h"

#include <service/onvif/manager.h>
#include <zarn/authentication/engine.h>
#include <zarn/logging/logger.h>
#include <zarn/type/binding.h>

#include <boost/asio/io_context.hpp>
#include <boost/asio/posix/stream_descriptor.hpp>
#include <boost/json/value.hpp>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace zarn::host {

/// The running host: it serves from construction to Stop(). Members are in the order in which they are made; Stop()
/// ends them in reverse. Thread: one, except where a function says so.
class Application {
public:
    /// Throws std::exception with one line when a port cannot be bound.
    explicit Application(Preparation preparation);

    /// Stop().
    ~Application();

    Application(Application const&) = delete;
    Application& operator=(Application const&) = delete;

    /// The address under which clients find the device service.
    std::string GetAddress() const;

    /// Runs until SIGTERM or SIGINT: re-reads the configuration at SIGHUP, applies and saves its changes. These signals
    /// must be blocked in all threads.
    void Run();

    /// Ends everything: no new connections, no new requests; the module answers those that wait; the answers are
    /// delivered; then the streams end. Stopping twice is harmless.
    void Stop();

private:
    using SignalDescriptor = boost::asio::posix::stream_descriptor;

    /// When a group of settings is applied at start.
    enum class AtStart {
        BeforeClients, ///< before a server accepts connections; a failure ends the start
        AfterServers,  ///< once all servers run; a failure is logged, as it is later
    };

    /// A group of settings that takes effect at start and when it changes.
    struct Applier {
        char const* what; ///< for the log
        AtStart atStart;
        std::function<void()> apply;
    };

    void BindPort(char const* path, std::uint16_t bound);
    std::vector<web::Route> MakeRoutes();
    void AwaitSignals(SignalDescriptor& signals, std::function<void(int)> const& handle);
    void End(int signal);
    void Reload();
    void ScheduleApply();
    std::vector<Applier> MakeAppliers();
    void ApplyOrLog(Applier const& applier) const;
    void Apply();
    void ApplyTls();
    void ApplyWebPort();
    void ReportLater();
    void ReportLowMemory();

    logging::Logger logger{"zarn.host"};
    std::chrono::steady_clock::time_point const started = std::chrono::steady_clock::now();
    Preparation preparation;
    boost::asio::io_context control; ///< run by Run()
    SignalDescriptor endSignals;
    SignalDescriptor reloadSignals; ///< its own, so that a flood of SIGHUP does not keep the others from being read
    web::Challenges challenges;
    ZarnAuthenticationEngine authentication{&challenges};
    boost::asio::io_context webContext; ///< run by the server's threads; outlives everything that completes responses
    std::shared_ptr<FailedLogins> failedLogins = std::make_shared<FailedLogins>();
    std::unique_ptr<video::Engine> engine;
    std::unique_ptr<service::onvif::Manager> manager;
    std::unique_ptr<events::MqttClient> mqtt;
    events::QueueWatch queueWatch;
    unsigned long reportedAllocations = 0; ///< that had to wait for memory
    web::RepeatingTimer queueTimer;
    web::RepeatingTimer trimTimer;
    std::shared_ptr<routes::OnvifRoute> onvif;
    std::shared_ptr<web::Admission> admission = std::make_shared<web::Admission>();
    std::unique_ptr<web::Server> server;
    std::atomic<bool> speaksTls; ///< the web server, to new connections
    /// The web port of the file that the server follows; none when the command line sets the port.
    std::optional<std::uint16_t> followedPort;
    std::vector<boost::json::value> fixed; ///< the file's values of the settings that are used at start only
    std::vector<Applier> const appliers;
    std::atomic<bool> applyScheduled = false;
    type::Binding changes;
};

} // namespace zarn::host
