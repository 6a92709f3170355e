#include "analytics.h"
#include "configuration_values.h"
#include "device.h"
#include "discovery.h"
#include "dispatch.h"
#include "events.h"
#include "media.h"
#include "media2.h"
#include "request_bounds.h"
#include "soap_context.h"
#include "soap_fault.h"
#include "subscription.h"
#include "xml_text.h"

#include <service/onvif/manager.h>
#include <zarn/asio/global_context.h>
#include <zarn/configuration/node.h>
#include <zarn/configuration/schema.h>
#include <zarn/container/buffer.h>
#include <zarn/job/dynamic_thread_pool.h>
#include <zarn/logging/logger.h>
#include <zarn/protocol/network/http/request.h>
#include <zarn/protocol/network/http/response.h>
#include <zarn/text/character.h>
#include <zarn/type/binding.h>

#include <httpda.h>

#include <atomic>
#include <chrono>
#include <future>
#include <istream>
#include <mutex>
#include <sstream>
#include <streambuf>
#include <string_view>
#include <utility>

namespace zarn::service::onvif {

namespace http = protocol::network::http;
using web::response::Pending;

namespace {

/// Workers that stay when there is nothing to do, and how long the others do.
constexpr unsigned LeastWorkers = 1;
constexpr std::chrono::seconds WorkerIdle(10);

logging::Logger const& ManagerLog() {
    static logging::Logger const logger("zarn.service.onvif.manager");
    return logger;
}

/// The answer while the exchange runs.
Pending::Data MakeNotReady() { return {http::response::Status::Provisional, {}, {web::response::State::NotReady, {}}}; }

Pending::Data MakeComplete(http::Response response) {
    auto const status = response.GetStatusCode();
    auto body = response.GetBuffer();
    return {status, std::move(response).GetFields(), {web::response::State::Complete, {std::move(body)}}};
}

/// gSOAP repeats texts of the request unchanged, however odd their bytes: names in its reasons, namespaces in any
/// answer.
http::Response MakeReadable(http::Response response) {
    auto const status = response.GetStatusCode();
    bool const isFailure = status >= http::response::Status::BadRequest;
    auto masked = MaskForXml(response.GetBody(), isFailure ? text::IsPlainXml : text::IsXml);
    if (!masked) return response;
    return {status, std::move(response).GetFields(), *std::move(masked)};
}

/// Reads a text where it is, and a line end behind it: without one, gSOAP would report a message that is cut off as a
/// failure of its input stream instead of as a syntax error.
class TextReader : public std::streambuf {
public:
    /// text  must outlive the reader
    explicit TextReader(std::string const& text) { Read(text); }

private:
    static constexpr std::string_view LineEnd = "\n";

    int_type underflow() override {
        if (eback() == LineEnd.data()) return traits_type::eof();
        Read(LineEnd);
        return traits_type::to_int_type(*gptr());
    }

    void Read(std::string_view text) {
        auto* const begin = const_cast<char*>(text.data()); // only read: there is no way to put a character back
        setg(begin, begin, begin + text.size());
    }
};

/// Registers the plugin that reads digest credentials. For every request it would begin with the digest of a body,
/// which only its own password check for "auth-int" consults, and which takes longer than reading the header.
void RegisterDigestPlugin(soap* soap) {
    auto* const parse = soap->fparse;
    soap_register_plugin_arg(soap, http_da, http_da_md5());
    soap->fparse = parse;
}

/// A request until it is answered. Thread: one at a time.
struct Exchange {
    http::Request request;
    std::promise<http::Response> response = {};
};

} // namespace

class Manager::Impl {
public:
    Impl(ZarnAuthenticationEngine const* engine, std::shared_ptr<configuration::node::Root> configuration,
         ChannelInfo channelInfo, utilities::name::Config const& nameConfig)
        : authenticationEngine(engine),
          threadPool(LeastWorkers, WorkerIdle),
          configuration(std::move(configuration)),
          channelInfo(std::move(channelInfo)),
          nameConfig(nameConfig) {
        BindEnabled();
    }

    /// Ends the exchanges and the responder; afterwards nothing of this object runs on another thread.
    void End() {
        enabledBinding.Reset();
        Stop();
        ending = true;
        Subscription::WakeWaiting();
        threadPool.Stop();
    }

    void Post(std::function<void()> job) { threadPool.Post(std::move(job)); }

    void UpdateServerPort(std::uint16_t port) {
        std::scoped_lock const lock(discoveryMutex);
        serverPort = port;
        if (discovery) discovery->SetPort(port);
    }

    void UpdateSSLState(bool enabled) {
        std::scoped_lock const lock(discoveryMutex);
        sslEnabled = enabled;
        if (discovery) discovery->SetSSlEnabled(enabled);
    }

    void UpdateDiscoveryAnywhere(bool allowed) {
        std::scoped_lock const lock(discoveryMutex);
        discoveryAnywhere = allowed;
        if (discovery) discovery->AllowAnySource(allowed);
    }

    /// Runs one SOAP exchange. Thread: a worker of the pool.
    http::Response Serve(http::Request const& request) const {
        auto const context = MakeSoapContext(&ending);
        auto* const soap = context.get();
        bool const ssl = sslEnabled;
        URIBase const uriBase(serverPort, ssl);
        DeviceService device(soap, uriBase, authenticationEngine, nameConfig, configuration);
        EventsService events(soap, uriBase, authenticationEngine, request.GetBody());
        MediaService media(soap, configuration, channelInfo, ssl, authenticationEngine);
        Media2Service media2(soap, configuration, channelInfo, ssl, authenticationEngine);
        AnalyticsService analytics(soap, authenticationEngine);
        RegisterDigestPlugin(soap);
        soap->error = CheckBounds(request);

        TextReader reader(request.GetText());
        std::istream input(&reader);
        std::ostringstream output;
        soap->os = &output;
        soap->is = &input;
        if (soap->error)
            SendFault(soap);
        else
            Dispatch(soap, device, events, media, media2, analytics);

        return MakeReadable(http::Response::Parse(std::make_shared<container::Buffer>(std::move(output).str())));
    }

private:
    void BindEnabled() {
        configuration->Schema({zarn::onvif::DescribeEnabled()});
        enabledBinding = configuration->Find(EnabledPath)
                             ->Bind([this](auto const& event) { FollowEnabled(*event); },
                                    configuration::node::binding::Option::DeliverCurrent);
    }

    /// Thread: the one that changes the configuration.
    void FollowEnabled(configuration::Event const& event) {
        auto const enabled = ReadEnabled(event);
        if (!enabled) return;
        if (*enabled)
            Start();
        else
            Stop();
    }

    void Start() {
        std::scoped_lock const lock(startStopMutex);
        if (discovery) return;
        ManagerLog().Log(logging::Level::Info, "Starting ONVIF discovery service");
        std::uint16_t const port = serverPort;
        bool const ssl = sslEnabled;
        auto made = std::make_unique<Discovery>(nameConfig, port, ssl);
        std::scoped_lock const publishing(discoveryMutex);
        // Catches up with updates that arrived while there was no responder to pass them to.
        if (serverPort != port) made->SetPort(serverPort);
        if (sslEnabled != ssl) made->SetSSlEnabled(sslEnabled);
        made->AllowAnySource(discoveryAnywhere);
        discovery = std::move(made);
    }

    void Stop() {
        std::scoped_lock const lock(startStopMutex);
        ManagerLog().Log(logging::Level::Info, "Stopping ONVIF discovery service");
        std::unique_ptr<Discovery> gone;
        {
            std::scoped_lock const withdrawing(discoveryMutex);
            gone = std::move(discovery);
        }
    }

    asio::GlobalContext context; // keeps its thread between subscriptions

    // Destroyed in reverse order, after End.
    ZarnAuthenticationEngine const* authenticationEngine;
    job::DynamicThreadPool threadPool;
    // Read by the workers without a lock.
    std::atomic<std::uint16_t> serverPort = 0;
    std::atomic<bool> sslEnabled = false;
    std::atomic<bool> ending = false;
    bool discoveryAnywhere = false; ///< guarded by discoveryMutex
    std::unique_ptr<Discovery> discovery;
    std::shared_ptr<configuration::node::Root> configuration;
    type::Binding enabledBinding;
    ChannelInfo channelInfo;
    std::mutex startStopMutex; ///< held while the responder starts or stops
    std::mutex discoveryMutex; ///< guards `discovery` and updates of the responder; held briefly
    utilities::name::Config nameConfig;
};

Manager::Manager(ZarnAuthenticationEngine const* engine, std::shared_ptr<configuration::node::Root> configuration,
                 std::function<meta::data::VideoInfo(std::string const&)> channelInfo,
                 utilities::name::Config const& nameConfig)
    : impl(std::make_unique<Impl>(engine, std::move(configuration), std::move(channelInfo), nameConfig)) {}

Manager::~Manager() { impl->End(); }

Manager::Response Manager::Post(std::shared_ptr<web::Request> request) {
    // std::function wants a copyable job, hence the shared exchange. An exception leaves the job to the pool, which
    // destroys it and with it the promise: the host then sees a broken promise.
    auto exchange = std::make_shared<Exchange>(
        Exchange{{request->GetMethod(), request->GetTarget(), request->GetBody(), request->GetFields()}});
    auto future = std::make_shared<std::future<http::Response>>(exchange->response.get_future());
    impl->Post([impl = impl.get(), exchange = std::move(exchange)] {
        exchange->response.set_value(impl->Serve(exchange->request));
    });
    auto data = [future = std::move(future)]() -> Pending::Data {
        if (!future->valid()) throw std::future_error(std::future_errc::no_state);
        if (future->wait_for(std::chrono::seconds(0)) != std::future_status::ready) return MakeNotReady();
        return MakeComplete(future->get());
    };
    return std::make_shared<Pending>(http::response::Status::Provisional, std::move(data),
                                     std::chrono::milliseconds(0));
}

void Manager::UpdateServerPort(std::uint16_t port) { impl->UpdateServerPort(port); }

void Manager::UpdateSSLState(bool enabled) { impl->UpdateSSLState(enabled); }

void Manager::UpdateDiscoveryAnywhere(bool allowed) { impl->UpdateDiscoveryAnywhere(allowed); }

} // namespace zarn::service::onvif
