#include "host/application.h"

#include "host/device_settings.h"
#include "host/events/mqtt_settings.h"
#include "host/heap.h"
#include "host/routes/events_route.h"
#include "host/routes/health_route.h"
#include "host/routes/snapshot_route.h"
#include "host/signals.h"
#include "host/status.h"
#include "host/video/rtsp_settings.h"
#include "host/web/listener.h"
#include "host/web/tls.h"
#include "host/web/web_settings.h"

#include <zarn/configuration/node.h>
#include <zarn/configuration/node/primitive.h>
#include <zarn/network/local.h>
#include <zarn/onvif/events/handler.h>
#include <zarn/onvif/settings.h>

#include <boost/asio/post.hpp>

#include <algorithm>
#include <array>
#include <csignal>
#include <exception>
#include <thread>
#include <utility>

namespace zarn::host {
namespace {

using logging::Level;
using zarn::onvif::RtspPortPath;
using zarn::onvif::WebPortPath;

/// Settings that are read once, at start.
constexpr std::array FixedPaths{"identity", RtspPortPath};

/// How often the queues of the subscriptions are checked.
constexpr std::chrono::seconds QueueInterval{1};

/// How often unused memory goes back to the system.
constexpr std::chrono::seconds TrimInterval{10};

std::vector<int> const EndingSignals{SIGTERM, SIGINT};

/// The web server's threads never wait. One for every two processors leaves the others to the module's workers, which
/// do most of the work; more would only compete with them.
unsigned CountWebThreads() { return std::clamp(std::thread::hardware_concurrency() / 2, 1U, 4U); }

std::uint16_t ReadPort(configuration::node::Root const& root, char const* path) {
    return configuration::node::Read<std::uint16_t>(root, path);
}

bool IsOverridden(configuration::node::Root const& root, char const* path) {
    return root.Find(path)->As<configuration::node::Value>().IsOverridden();
}

boost::json::value ReadPersisted(configuration::node::Root const& root, char const* path) {
    return root.Find(path)->ToJson(configuration::Layer::Persisted);
}

std::uint16_t ReadPersistedPort(configuration::node::Root const& root) {
    return ReadPersisted(root, WebPortPath).to_number<std::uint16_t>();
}

} // namespace

Application::Application(Preparation prepared)
    : preparation(std::move(prepared)),
      control(1),
      endSignals(control, OpenSignals(EndingSignals)),
      reloadSignals(control, OpenSignals({SIGHUP})),
      queueTimer(control.get_executor(), QueueInterval, "Checking the queues of the subscriptions failed",
                 [this] {
                     ReportLowMemory();
                     queueWatch.CheckQueues(events::ReadQueuedWarning(*preparation.configuration));
                 }),
      trimTimer(control.get_executor(), TrimInterval, "Returning unused memory to the system failed", TrimHeap),
      speaksTls(preparation.tls != nullptr),
      appliers(MakeAppliers()) {
    auto& root = *preparation.configuration;
    for (auto const* path : FixedPaths) fixed.push_back(ReadPersisted(root, path));

    authentication.SetHa1(preparation.credentials.ha1);

    if (!IsOverridden(root, WebPortPath)) followedPort = ReadPersistedPort(root);
    web::Listener listener(webContext, ReadPort(root, WebPortPath));
    auto const webPort = listener.GetPort();
    BindPort(WebPortPath, webPort);
    engine = std::make_unique<video::Engine>(
        video::RtspSettings{.port = ReadPort(root, RtspPortPath), .authenticate = true, .failedLogins = failedLogins});
    BindPort(RtspPortPath, engine->GetPort()); // its clients wait until the channels are set
    manager = std::make_unique<service::onvif::Manager>(
        &authentication, preparation.configuration, [this](std::string const& id) { return engine->Describe(id); },
        ReadIdentity(root));
    manager->UpdateSSLState(speaksTls);
    for (auto const& applier : appliers) {
        if (applier.atStart == AtStart::BeforeClients) applier.apply();
    }
    manager->UpdateServerPort(webPort); // last: from now on addresses are told
    mqtt = std::make_unique<events::MqttClient>(zarn::onvif::events::Publish);
    onvif = std::make_shared<routes::OnvifRoute>(*manager, web::Digest(authentication, challenges));
    server = std::make_unique<web::Server>(webContext, std::move(listener), web::Router(MakeRoutes()),
                                           web::Server::Options{.limits = web::ReadLimits(root),
                                                                .tls = preparation.tls,
                                                                .threads = CountWebThreads(),
                                                                .admission = admission,
                                                                .failedLogins = failedLogins});
    for (auto const& applier : appliers) {
        if (applier.atStart == AtStart::AfterServers) ApplyOrLog(applier);
    }
    changes = root.Bind([this](auto const&) { ScheduleApply(); });
    queueTimer.Start();
    trimTimer.Start();
    AwaitSignals(endSignals, [this](int signal) { End(signal); });
    AwaitSignals(reloadSignals, [this](int) { Reload(); });
}

Application::~Application() { Stop(); }

std::string Application::GetAddress() const {
    return network::MakeLocalWebUrl(speaksTls, ReadPort(*preparation.configuration, WebPortPath)) +
           "/onvif/device_service";
}

void Application::Run() { control.run(); }

void Application::Stop() {
    if (!server) return;
    changes.Reset();
    server->StopAccepting();
    mqtt->RequestStop();
    onvif->Stop();
    manager.reset();
    server->Stop();
    engine->Stop();
    mqtt->Stop();
    server.reset();
}

/// Services and clients are told the port that is really bound; the file keeps what it says.
void Application::BindPort(char const* path, std::uint16_t bound) {
    preparation.configuration->Find(path)->As<configuration::node::Primitive<std::uint16_t>>().Override(bound);
}

std::vector<web::Route> Application::MakeRoutes() {
    auto const snapshot = [this](std::string_view id, std::function<void(video::Snapshot)> done) {
        engine->RequestSnapshot(id, std::move(done));
    };
    auto const describe = [this] {
        auto const uptime =
            std::chrono::duration_cast<std::chrono::seconds>(std::chrono::steady_clock::now() - started);
        return MakeStatus(*preparation.configuration, *engine, *admission, mqtt->GetStatus(), speaksTls, uptime);
    };
    web::Digest const digest(authentication, challenges);
    return {
        {"/onvif/", onvif},
        {"/snapshot/*/latest.jpeg", std::make_shared<routes::SnapshotRoute>(digest, snapshot)},
        {"/api/events", std::make_shared<routes::EventsRoute>(digest, zarn::onvif::events::Publish)},
        {"/api/health", std::make_shared<routes::HealthRoute>(describe)},
    };
}

void Application::AwaitSignals(SignalDescriptor& signals, std::function<void(int)> const& handle) {
    signals.async_wait(signals.wait_read, [this, &signals, handle](boost::system::error_code error) {
        if (error) return;
        if (auto const signal = ReadSignal(signals.native_handle())) handle(*signal);
        AwaitSignals(signals, handle);
    });
}

void Application::End(int signal) {
    logger.Log(Level::Info, "Stopping: signal %0%", signal);
    // A second signal ends the process at once.
    UnblockSignals(EndingSignals);
    control.stop();
}

void Application::Reload() {
    try {
        preparation.file->Load();
        preparation.file->KeepCopy();
        logger.Log(Level::Info, "Read %0% again", preparation.file->GetPath());
    } catch (LoadError const& error) {
        logger.Log(Level::Error, "Keeping the previous configuration: %0%", error.what());
        return;
    } catch (std::exception const& error) {
        logger.Log(Level::Error, "The configuration has changed, but not all of it could be applied: %0%",
                   error.what());
    }
    // Also when the file is the same: the certificate may have changed, or a port be free now.
    ScheduleApply();
}

void Application::ScheduleApply() {
    if (!applyScheduled.exchange(true)) boost::asio::post(control, [this] { Apply(); });
}

/// The web server is constructed with its limits and certificate, because it accepts clients at once; everything else
/// takes effect through these rows only.
std::vector<Application::Applier> Application::MakeAppliers() {
    using enum AtStart;
    auto const& root = *preparation.configuration;
    return {
        {"login settings", BeforeClients,
         [this, &root] {
             auto const access = ReadAccessSettings(root);
             engine->SetAuthentication(access.authenticate, preparation.credentials.ha1);
             authentication.SetEnabled(access.authenticate);
             challenges.SetLife(access.nonceLife);
             failedLogins->SetLimit(access.failedLoginsPerMinute);
         }},
        {"limits of the RTSP server", BeforeClients, [this, &root] { engine->SetLimits(video::ReadRtspLimits(root)); }},
        {"discovery settings", BeforeClients,
         [this, &root] { manager->UpdateDiscoveryAnywhere(ReadDiscoveryAnywhere(root)); }},
        // After what the RTSP server needs: at start it accepts clients from here on.
        {"channels", BeforeClients, [this, &root] { engine->SetChannels(video::ReadChannels(root)); }},
        {"limits of the web server", AfterServers, [this, &root] { server->SetLimits(web::ReadLimits(root)); }},
        // Before the port, so that a new one never speaks the former protocol.
        {"certificate", AfterServers, [this] { ApplyTls(); }},
        {"web port", AfterServers, [this] { ApplyWebPort(); }},
        {"MQTT settings", AfterServers, [this, &root] { mqtt->Configure(events::ReadMqttSettings(root)); }},
    };
}

void Application::ApplyOrLog(Applier const& applier) const {
    try {
        applier.apply();
    } catch (std::exception const& error) {
        logger.Log(Level::Error, "Keeping the previous %0%: %1%", applier.what, error.what());
    }
}

void Application::Apply() {
    applyScheduled = false;
    for (auto const& applier : appliers) ApplyOrLog(applier);
    try {
        ReportLater();
        preparation.file->SaveChanges();
        preparation.file->KeepCopy();
    } catch (std::exception const& error) {
        logger.Log(Level::Error, "The configuration could not be saved: %0%", error.what());
    }
}

void Application::ApplyTls() {
    // At start, uses the context made during preparation; later, reads the files again, since they may have changed.
    auto tls = preparation.tls ? std::exchange(preparation.tls, nullptr) : web::ReadTls(*preparation.configuration);
    speaksTls = tls != nullptr;
    server->SetTls(std::move(tls));
    manager->UpdateSSLState(speaksTls);
}

/// A port that the command line sets stays for the run.
void Application::ApplyWebPort() {
    if (!followedPort) return;
    auto const& root = *preparation.configuration;
    auto const wanted = ReadPersistedPort(root);
    if (wanted == followedPort) return;
    if (wanted == ReadPort(root, WebPortPath)) { // the one that the system has chosen before
        followedPort = wanted;
        return;
    }
    web::Listener listener(webContext, wanted);
    auto const port = listener.GetPort();
    server->SetListener(std::move(listener));
    followedPort = wanted;
    BindPort(WebPortPath, port);
    manager->UpdateServerPort(port);
    logger.Log(Level::Info, "The web server has moved to port %0%", port);
}

void Application::ReportLowMemory() {
    auto const present = CountRetriedAllocations();
    if (present == reportedAllocations) return;
    logger.Log(Level::Warning, "Low memory: %0% allocations had to wait", present);
    reportedAllocations = present;
}

void Application::ReportLater() {
    for (std::size_t i = 0; i < fixed.size(); ++i) {
        auto present = ReadPersisted(*preparation.configuration, FixedPaths.at(i));
        if (present == fixed[i]) continue;
        logger.Log(Level::Warning, "%0% changes at the next start", FixedPaths.at(i));
        fixed[i] = std::move(present);
    }
}

} // namespace zarn::host
