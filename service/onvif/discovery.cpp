#include "discovery.h"

#include <zarn/onvif/discovery/request.h>
#include <zarn/onvif/discovery/response.h>

namespace zarn::service::onvif {

using zarn::onvif::discovery::Request;
using zarn::onvif::discovery::Response;

Discovery::Discovery(utilities::name::Config const& nameConfig, std::uint16_t port, bool sslEnabled)
    : port(port), sslEnabled(sslEnabled), portKnown(port != 0), nameConfig(nameConfig) {
    Begin();
}

Discovery::~Discovery() { End(); }

void Discovery::SetPort(std::uint16_t newPort) {
    port = newPort;
    portKnown = true; // also for 0: the host has set it explicitly
}

void Discovery::SetSSlEnabled(bool enabled) { sslEnabled = enabled; }

Response Discovery::HandleReceive(Request const& request) {
    if (!portKnown) return {};
    return {request.GetMessageId(), request.GetAddress(), port, sslEnabled, nameConfig};
}

} // namespace zarn::service::onvif
