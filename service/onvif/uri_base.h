#pragma once

#include <string>

namespace zarn::service::onvif {

/// Path that every service of this device lies below, on the host's web server.
inline constexpr char BasePath[] = "/onvif";

/// Builds the absolute base URI of the services from the web server's port and TLS state. A value, copied freely.
/// Thread: any.
///
/// The services that tell addresses of their own derive from it. The operations of all services keep to this: they bear
/// the names of the standard, fill the response, whose parts live in the context, and return SOAP_OK, 401 when they
/// take credentials and the request has no right ones, or what SoapFault gives for a request that cannot be served.
/// What is wrong with the host's configuration is thrown.
class URIBase {
public:
    /// port  the host web server's port, written into the URI as it is, also 0 and the scheme's default
    /// ssl   whether the web server speaks TLS
    URIBase(unsigned short port, bool ssl);

    /// "http://" or "https://", the host's local IPv4 address at the moment of the call, ":", the port and "/onvif".
    /// Throws boost::system::system_error when the address cannot be written as text.
    std::string GetBaseUri() const;

    /// The port given at construction.
    unsigned short GetPort() const;

private:
    unsigned short port;
    bool ssl;
};

} // namespace zarn::service::onvif
