#pragma once

class ZarnAuthenticationEngine;
struct soap;

namespace zarn::service::onvif {

/// Whether the request on the context may be served: always while the engine requires no authentication, else when it
/// carries a right HTTP digest (RFC 2617, 3.2.2) for the account "admin".
/// On false the operation returns the status 401; the digest plugin then writes the challenge, for the realm that is
/// set here when the request carried no digest credentials.
/// Thread: the one that runs the context's exchange.
bool IsAuthenticated(soap* soap, ZarnAuthenticationEngine const* engine);

} // namespace zarn::service::onvif
