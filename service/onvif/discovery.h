#pragma once

#include "discovery_base.h"

#include <zarn/utilities/name/config.h>

#include <atomic>
#include <cstdint>

namespace zarn::service::onvif {

/// The WS-Discovery responder: answers probes with the address of the device service.
class Discovery final : public DiscoveryBase {
public:
    /// nameConfig  the product identity that clients are told
    /// port        of the web server; while it is 0 nothing is answered, until SetPort is called
    /// sslEnabled  whether the web server speaks TLS
    /// Throws std::system_error when no thread can be started and std::bad_alloc without memory; any other failure is
    /// logged and retried.
    Discovery(utilities::name::Config const& nameConfig, std::uint16_t port, bool sslEnabled);

    ~Discovery() override;

    Discovery(Discovery const&) = delete;
    Discovery& operator=(Discovery const&) = delete;

    /// The port that later answers tell, 0 included. Thread: any.
    void SetPort(std::uint16_t newPort);

    /// Whether later answers tell an address with TLS. Thread: any.
    void SetSSlEnabled(bool enabled);

    zarn::onvif::discovery::Response HandleReceive(zarn::onvif::discovery::Request const& request) override;

private:
    std::atomic<std::uint16_t> port;
    std::atomic<bool> sslEnabled;
    std::atomic<bool> portKnown;
    utilities::name::Config const nameConfig;
};

} // namespace zarn::service::onvif
