#include "onvif/discovery/xml.h"

#include <zarn/network/local.h>
#include <zarn/onvif/discovery/endpoint.h>
#include <zarn/onvif/discovery/response.h>
#include <zarn/onvif/discovery/scopes.h>
#include <zarn/text/character.h>

#include <boost/uuid/random_generator.hpp>
#include <boost/uuid/uuid_io.hpp>

#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <new>
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

// The library tells of a lack of memory by what it returns, and goes on with a message that lacks a part.

void Require(bool succeeded) {
    if (!succeeded) throw std::bad_alloc();
}

pugi::xml_node Append(pugi::xml_node parent, char const* name) {
    auto const child = parent.append_child(name);
    Require(!child.empty());
    return child;
}

void Append(pugi::xml_node parent, char const* name, std::string const& text) {
    Require(Append(parent, name).text().set(text.c_str()));
}

template <class Value>
void SetAttribute(pugi::xml_node element, char const* name, Value value) {
    Require(element.append_attribute(name).set_value(value));
}

/// When this process first answered, in seconds since 1970: more after each restart.
std::uint32_t GetInstanceId() {
    static auto const id = static_cast<std::uint32_t>(
        std::chrono::duration_cast<std::chrono::seconds>(std::chrono::system_clock::now().time_since_epoch()).count());
    return id;
}

void AppendSequence(pugi::xml_node header) {
    static std::atomic<std::uint32_t> last = 0;
    auto const sequence = Append(header, "d:AppSequence");
    SetAttribute(sequence, "InstanceId", GetInstanceId());
    SetAttribute(sequence, "MessageNumber", ++last);
}

std::string MakeServiceAddress(unsigned short port, bool ssl) {
    return network::MakeLocalWebUrl(ssl, port) + "/onvif/device_service";
}

void AppendHeader(pugi::xml_node envelope, std::string const& relatesTo, std::string const& address) {
    auto const header = Append(envelope, "SOAP-ENV:Header");
    Append(header, "wsa:MessageID", "urn:uuid:" + to_string(boost::uuids::random_generator()()));
    Append(header, "wsa:RelatesTo", relatesTo);
    Append(header, "wsa:To", address);
    Append(header, "wsa:Action", ProbeMatchesAction);
    AppendSequence(header);
}

void AppendBody(pugi::xml_node envelope, std::string const& scopes, std::string const& serviceAddress) {
    auto const match = Append(Append(Append(envelope, "SOAP-ENV:Body"), "d:ProbeMatches"), "d:ProbeMatch");
    Append(Append(match, "wsa:EndpointReference"), "wsa:Address", GetEndpoint());
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

/// Throws std::bad_alloc unless there is memory for all of the message.
std::string Write(std::string const& relatesTo, std::string const& address, std::string const& scopes,
                  std::string const& serviceAddress) {
    pugi::xml_document document;
    auto const declaration = document.append_child(pugi::node_declaration);
    SetAttribute(declaration, "version", "1.0");
    SetAttribute(declaration, "encoding", "UTF-8");
    auto const envelope = Append(document, "SOAP-ENV:Envelope");
    for (auto const& [name, space] : Prefixes) SetAttribute(envelope, name, space);
    AppendHeader(envelope, relatesTo, address);
    AppendBody(envelope, scopes, serviceAddress);
    std::string text;
    StringWriter writer(text);
    document.save(writer, "", pugi::format_raw, pugi::encoding_utf8);
    return text;
}

} // namespace

Response::Response(std::string const& relatesTo, std::string const& address, unsigned short port, bool ssl,
                   utilities::name::Config nameConfig) { // NOLINT: by value as callers link it
    if (relatesTo.empty() || !text::IsXmlLine(relatesTo) || !text::IsXmlLine(address)) return;
    try {
        xml = Write(relatesTo, address, MakeScopes(nameConfig), MakeServiceAddress(port, ssl));
    } catch (std::bad_alloc const&) {
        xml.clear(); // not valid
    }
}

} // namespace zarn::onvif::discovery
