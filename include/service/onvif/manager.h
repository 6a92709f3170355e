#pragma once

#include <zarn/configuration/node/root.h>
#include <zarn/meta/data/video_info.h>
#include <zarn/utilities/name/config.h>
#include <zarn/web/service.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

class ZarnAuthenticationEngine;

namespace zarn::service::onvif {

/// The ONVIF device side of a host: a web service that answers the SOAP requests of ONVIF clients.
///
/// The host constructs one, registers it with its web server for every POST below "/onvif", and keeps it for as long as
/// it runs. The request path selects nothing: the operation element of the SOAP body decides which of the five services
/// (Device, Events, Media, Media2, Analytics) answers.
///
/// It adds the setting `settings.onvif.enabled` (false unless stated) to the host's configuration and follows it: while
/// it is true, the device answers the WS-Discovery probes of its network. Requests are served either way. If no
/// thread can be started for that, the call that sets it to true throws std::system_error: the setting keeps its new
/// value, no probe is answered, and setting it to true again retries.
class __attribute__((visibility("default"))) Manager final : public web::Service {
public:
    /// engine         decides about credentials; must outlive the manager; never null
    /// configuration  the host's tree; read: `channels`, `settings.web_port`, `settings.rtsp_port`
    /// channelInfo    the present video description of the channel with the given id; called on worker threads, several
    ///                at a time, and while the configuration lock is held: it must be quick and must not wait for it
    /// nameConfig     the product identity that clients are told
    /// Throws configuration::Error or object::BadCast when `settings.onvif.enabled` is there and no boolean, and
    /// std::system_error when it is true and no thread can be started.
    Manager(ZarnAuthenticationEngine const* engine, std::shared_ptr<configuration::node::Root> configuration,
            std::function<meta::data::VideoInfo(std::string const&)> channelInfo,
            utilities::name::Config const& nameConfig);

    /// Stops answering probes, finishes the exchanges under way, then releases everything. Exchanges that wait for
    /// events answer at once. Waits for a change of the setting that is being followed on another thread.
    ~Manager() override;

    Manager(Manager const&) = delete;
    Manager& operator=(Manager const&) = delete;

    /// Hands one SOAP request to a worker and returns at once.
    /// The pending response is not ready until the exchange is over; it then yields the whole HTTP response, once: a
    /// further call of its data function throws std::future_error. An exchange that ended in an exception, such as a
    /// configuration value of the wrong type, breaks its promise: the data function throws std::future_error.
    /// Throws std::system_error when no worker thread can be started.
    /// Thread: any; several at a time.
    Response Post(std::shared_ptr<web::Request> request) override;

    /// The port of the host's web server, as advertised from the next request or probe on. 0 until the first call, and
    /// until then no probe is answered.
    /// Thread: any.
    void UpdateServerPort(std::uint16_t port);

    /// Whether the host's web server speaks TLS, as advertised from the next request or probe on. False until the first
    /// call. Thread: any.
    void UpdateSSLState(bool enabled);

    /// Whether probes from networks that the machine is not connected to are answered, from the next probe on. False
    /// until the first call. Thread: any.
    void UpdateDiscoveryAnywhere(bool allowed);

private:
    class __attribute__((visibility("hidden"))) Impl;
    std::unique_ptr<Impl> impl;
};

} // namespace zarn::service::onvif
