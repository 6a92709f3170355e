#include "uri_base.h"

#include <zarn/network/local.h>

namespace zarn::service::onvif {

URIBase::URIBase(unsigned short port, bool ssl) : port(port), ssl(ssl) {}

std::string URIBase::GetBaseUri() const { return network::MakeLocalWebUrl(ssl, port) + BasePath; }

unsigned short URIBase::GetPort() const { return port; }

} // namespace zarn::service::onvif
