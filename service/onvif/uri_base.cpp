#include "uri_base.h"

#include <zarn/network/local.h>

namespace zarn::service::onvif {

URIBase::URIBase(unsigned short port, bool ssl) : port(port), ssl(ssl) {}

std::string URIBase::GetBaseUri() const {
    return (ssl ? "https://" : "http://") + network::GetLocalIPAddress().to_string() + ":" + std::to_string(port) +
           BasePath;
}

unsigned short URIBase::GetPort() const { return port; }

} // namespace zarn::service::onvif
