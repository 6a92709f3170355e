#include "host/application.h"

#include "host/configuration_file.h"
#include "host/events/mqtt_configuration.h"
#include "host/heap.h"
#include "host/routes/events_route.h"
#include "host/routes/health_route.h"
#include "host/routes/snapshot_route.h"
#include "host/settings.h"
#include "host/signals.h"
#include "host/status.h"
#include "host/web/listener.h"
#include "host/web/tls.h"

#include <zarn/configuration/layer.h>
#include <zarn/configuration/node/primitive.h>
#include <zarn/network/local.h>
#include <zarn/onvif/events/handler.h>

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

/// Settings that are read once, at start.
constexpr std::array FixedPaths{"identity", RtspPortPath};

/// How often the queues of the subscriptions are looked at.
constexpr std::chrono::seconds QueueInterval{1};

std::vector<int> const EndingSignals{SIGTERM, SIGINT};

/// Threads of the web server: they never wait, so that more than a few would only get into each other's way.
unsigned CountWebThreads() { return std::clamp(std::thread::hardware_concurrency(), 2U, 4U); }

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
      queueTimer(control.get_executor(), QueueInterval, "The queues of the subscriptions were not looked at",
                 [this] {
                     ReportShortages();
                     queueWatch.Look(ReadQueuedWarning(*preparation.configuration));
                 }),
      speaksTls(preparation.tls != nullptr) {
    auto& root = *preparation.configuration;
    for (auto const* path : FixedPaths) fixed.push_back(ReadPersisted(root, path));

    bool const authenticate = ReadBool(root, AuthenticationPath);
    authentication.SetHa1(preparation.credentials.ha1);
    authentication.SetEnabled(authenticate);
    challenges.SetLife(ReadNonceLife(root));

    if (!IsOverridden(root, WebPortPath)) followedPort = ReadPersistedPort(root);
    web::Listener listener(webContext, ReadPort(root, WebPortPath));
    BindPort(WebPortPath, listener.GetPort());
    failedLogins->SetLimit(ReadFailedLoginsLimit(root));
    engine = std::make_unique<video::Engine>(video::RtspSettings{.port = ReadPort(root, RtspPortPath),
                                                                 .authenticate = authenticate,
                                                                 .ha1 = preparation.credentials.ha1,
                                                                 .limits = ReadRtspLimits(root),
                                                                 .failedLogins = failedLogins});
    BindPort(RtspPortPath, engine->GetPort());
    engine->SetChannels(ReadChannels(root));

    manager = std::make_unique<service::onvif::Manager>(
        &authentication, preparation.configuration, [this](std::string const& id) { return engine->Describe(id); },
        ReadIdentity(root));
    manager->UpdateSSLState(speaksTls);
    manager->UpdateDiscoveryAnywhere(ReadBool(root, DiscoveryAnywherePath));
    manager->UpdateServerPort(listener.GetPort()); // last: from now on addresses are told
    mqtt = std::make_unique<events::MqttClient>(zarn::onvif::events::Publish);
    onvif = std::make_shared<routes::OnvifRoute>(*manager, web::Digest(authentication, challenges));

    server = std::make_unique<web::Server>(webContext, std::move(listener), web::Router(MakeRoutes()),
                                           web::Server::Options{.limits = ReadLimits(root),
                                                                .tls = preparation.tls,
                                                                .threads = CountWebThreads(),
                                                                .admission = admission,
                                                                .failedLogins = failedLogins});
    ApplyMqtt();
    changes = root.Bind([this](auto const&) { ScheduleApply(); });
    queueTimer.Start();
    AwaitSignals(endSignals, [this](int signal) { End(signal); });
    AwaitSignals(reloadSignals, [this](int) { Reload(); });
}

Application::~Application() { Stop(); }

std::string Application::GetAddress() const {
    return std::string(speaksTls ? "https://" : "http://") + network::GetLocalIPAddress().to_string() + ':' +
           std::to_string(ReadPort(*preparation.configuration, WebPortPath)) + "/onvif/device_service";
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
    // A second one ends the process the system's way, should stopping take too long for somebody.
    ReleaseSignals(EndingSignals);
    control.stop();
}

void Application::Reload() {
    try {
        preparation.file->Load();
        preparation.file->KeepCopy();
        logger.Log(Level::Info, "Read %0% again", preparation.file->GetPath());
    } catch (LoadError const& error) {
        logger.Log(Level::Error, "The configuration stays as it was: %0%", error.what());
        return;
    } catch (std::exception const& error) {
        logger.Log(Level::Error, "The configuration has changed, but could not be applied wholly: %0%", error.what());
    }
    // Also when the file is as it was: the certificate may be another, or a port free.
    ScheduleApply();
}

void Application::ScheduleApply() {
    if (!applyScheduled.exchange(true)) boost::asio::post(control, [this] { Apply(); });
}

void Application::Apply() {
    applyScheduled = false;
    auto const& root = *preparation.configuration;
    try {
        bool const authenticate = ReadBool(root, AuthenticationPath);
        if (authenticate != authentication.IsEnabled()) {
            authentication.SetEnabled(authenticate);
            engine->SetAuthentication(authenticate, preparation.credentials.ha1);
        }
        challenges.SetLife(ReadNonceLife(root));
        failedLogins->SetLimit(ReadFailedLoginsLimit(root));
        manager->UpdateDiscoveryAnywhere(ReadBool(root, DiscoveryAnywherePath));
        server->SetLimits(ReadLimits(root));
        engine->SetLimits(ReadRtspLimits(root));
        engine->SetChannels(ReadChannels(root));
        ApplyTls(); // before the port, so that a new one never speaks the former protocol
        ApplyWebPort();
        ApplyMqtt();
        ReportLater();
        preparation.file->SaveChanges();
        preparation.file->KeepCopy();
    } catch (std::exception const& error) {
        logger.Log(Level::Error, "A change of the configuration could not be applied or saved: %0%", error.what());
    }
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
    try {
        web::Listener listener(webContext, wanted);
        auto const port = listener.GetPort();
        server->SetListener(std::move(listener));
        followedPort = wanted;
        BindPort(WebPortPath, port);
        manager->UpdateServerPort(port);
        logger.Log(Level::Info, "The web server has moved to port %0%", port);
    } catch (std::exception const& error) {
        logger.Log(Level::Error, "The web server stays where it was: %0%", error.what());
    }
}

void Application::ApplyTls() {
    try {
        auto const files = ReadTlsFiles(*preparation.configuration);
        server->SetTls(files.IsEmpty() ? nullptr : web::MakeTlsContext(files.certificate, files.privateKey));
        speaksTls = !files.IsEmpty();
        manager->UpdateSSLState(speaksTls);
    } catch (std::exception const& error) {
        logger.Log(Level::Error, "The certificate stays as it was: %0%", error.what());
    }
}

void Application::ApplyMqtt() {
    try {
        mqtt->Configure(events::ReadMqttSettings(*preparation.configuration));
    } catch (std::exception const& error) {
        logger.Log(Level::Error, "The intake of events over MQTT stays as it was: %0%", error.what());
    }
}

void Application::ReportShortages() {
    auto const present = CountShortages();
    if (present == reportedShortages) return;
    logger.Log(Level::Warning, "Memory was short: it had to be waited for, %0% times so far", present);
    reportedShortages = present;
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
