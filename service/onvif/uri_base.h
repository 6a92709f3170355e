#pragma once

#include <string>

namespace zarn::service::onvif {

/// Path that every service of this device lies below, on the host's web server.
inline constexpr char BasePath[] = "/onvif";

/// Builds the absolute base URI of the services from the web server's port and TLS state. A value, copied freely.
/// Thread: any.
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
