#pragma once

#include <zarn/utilities/name/config.h>

#include <string>

namespace zarn::onvif::discovery {

/// The answer to a Probe: a SOAP 1.2 envelope with the ProbeMatches message of WS-Discovery 2005/04 and one match, this
/// device. It tells
/// - the endpoint of the device (see MakeEndpoint), the same for every answer of this process;
/// - the types `dn:NetworkVideoTransmitter` and `tds:Device`;
/// - the device's scopes (see MakeScopes);
/// - one address, "http" or "https", the local IPv4 address of this machine, the port and "/onvif/device_service";
/// - metadata version 1.
/// Each answer has a message id of its own, and an application sequence that grows within the process and over
/// restarts. Immutable. Thread: any. Source: WS-Discovery 2005/04, 5.3 Probe Match and Appendix I Application
/// Sequencing.
class Response {
public:
    /// Not valid: there is nothing to answer.
    Response() = default;

    /// Builds the answer.
    /// relatesTo   the message id of the probe; the answer is not valid when it is empty
    /// address     the recipient as the probe names it; goes into the header only
    /// port        of the web server that serves the device service
    /// ssl         that server speaks TLS
    /// nameConfig  the identity, for the scopes
    /// Texts that XML cannot carry (control characters, bytes that are no UTF-8) make the answer not valid, and so does
    /// a lack of memory.
    Response(std::string const& relatesTo, std::string const& address, unsigned short port, bool ssl,
             utilities::name::Config nameConfig);

    /// True when there is an answer to send.
    bool IsValid() const noexcept { return !xml.empty(); }

    /// The message in UTF-8; empty when it is not valid.
    std::string const& GetXML() const noexcept { return xml; }

private:
    std::string xml;
};

} // namespace zarn::onvif::discovery
