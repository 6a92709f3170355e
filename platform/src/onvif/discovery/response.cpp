#include "onvif/discovery/text.h"
#include "onvif/discovery/xml.h"

#include <zarn/network/local.h>
#include <zarn/onvif/discovery/endpoint.h>
#include <zarn/onvif/discovery/response.h>
#include <zarn/onvif/discovery/scopes.h>

#include <boost/uuid/random_generator.hpp>
#include <boost/uuid/uuid_io.hpp>

#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <utility>

namespace zarn::onvif::discovery {

namespace {

constexpr char ProbeMatchesAction[] = "http://schemas.xmlsoap.org/ws/2005/04/discovery/ProbeMatches";

/// The prefixes of the message.
constexpr std::array Prefixes{
    std::pair{"xmlns:SOAP-ENV", SoapNamespace}, std::pair{"xmlns:wsa", AddressingNamespace},
    std::pair{"xmlns:d", DiscoveryNamespace},   std::pair{"xmlns:dn", NetworkNamespace},
    std::pair{"xmlns:tds", DeviceNamespace},
};

void Append(pugi::xml_node parent, char const* name, std::string const& text) {
    parent.append_child(name).text().set(text.c_str());
}

/// When this process first answered, in seconds since 1970: more after each restart.
std::uint32_t GetInstanceId() {
    static auto const id = static_cast<std::uint32_t>(
        std::chrono::duration_cast<std::chrono::seconds>(std::chrono::system_clock::now().time_since_epoch()).count());
    return id;
}

void AppendSequence(pugi::xml_node header) {
    static std::atomic<std::uint32_t> last = 0;
    auto sequence = header.append_child("d:AppSequence");
    sequence.append_attribute("InstanceId") = GetInstanceId();
    sequence.append_attribute("MessageNumber") = ++last;
}

std::string MakeServiceAddress(unsigned short port, bool ssl) {
    return (ssl ? "https://" : "http://") + network::GetLocalIPAddress().to_string() + ":" + std::to_string(port) +
           "/onvif/device_service";
}

void AppendHeader(pugi::xml_node envelope, std::string const& relatesTo, std::string const& address) {
    auto header = envelope.append_child("SOAP-ENV:Header");
    Append(header, "wsa:MessageID", "urn:uuid:" + to_string(boost::uuids::random_generator()()));
    Append(header, "wsa:RelatesTo", relatesTo);
    Append(header, "wsa:To", address);
    Append(header, "wsa:Action", ProbeMatchesAction);
    AppendSequence(header);
}

void AppendBody(pugi::xml_node envelope, std::string const& scopes, std::string const& serviceAddress) {
    auto match = envelope.append_child("SOAP-ENV:Body").append_child("d:ProbeMatches").append_child("d:ProbeMatch");
    Append(match.append_child("wsa:EndpointReference"), "wsa:Address", GetEndpoint());
    Append(match, "d:Types", "dn:NetworkVideoTransmitter tds:Device");
    Append(match, "d:Scopes", scopes);
    Append(match, "d:XAddrs", serviceAddress);
    Append(match, "d:MetadataVersion", "1");
}

struct StringWriter : pugi::xml_writer {
    explicit StringWriter(std::string& text) : text(text) {}

    void write(void const* data, std::size_t size) override { text.append(static_cast<char const*>(data), size); }

    std::string& text;
};

} // namespace

Response::Response(std::string const& relatesTo, std::string const& address, unsigned short port, bool ssl,
                   utilities::name::Config nameConfig) { // NOLINT: by value as callers link it
    if (relatesTo.empty() || !IsXmlLine(relatesTo) || !IsXmlLine(address)) return;
    pugi::xml_document document;
    auto declaration = document.append_child(pugi::node_declaration);
    declaration.append_attribute("version") = "1.0";
    declaration.append_attribute("encoding") = "UTF-8";
    auto envelope = document.append_child("SOAP-ENV:Envelope");
    for (auto const& [name, space] : Prefixes) {
        envelope.append_attribute(name) = space;
    }
    AppendHeader(envelope, relatesTo, address);
    AppendBody(envelope, MakeScopes(nameConfig), MakeServiceAddress(port, ssl));
    StringWriter writer(xml);
    document.save(writer, "", pugi::format_raw, pugi::encoding_utf8);
}

} // namespace zarn::onvif::discovery
