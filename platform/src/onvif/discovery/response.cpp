#include <zarn/logging/format.h>
#include <zarn/network/local.h>
#include <zarn/onvif/discovery/endpoint.h>
#include <zarn/onvif/discovery/response.h>
#include <zarn/onvif/discovery/scopes.h>
#include <zarn/text/character.h>

#include <boost/algorithm/string/erase.hpp>
#include <boost/algorithm/string/replace.hpp>
#include <boost/uuid/random_generator.hpp>
#include <boost/uuid/uuid_io.hpp>

#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <new>

namespace zarn::onvif::discovery {

namespace {

/// The message; its line ends are not sent.
constexpr std::string_view Message = R"(<?xml version="1.0" encoding="UTF-8"?>
<SOAP-ENV:Envelope
 xmlns:SOAP-ENV="http://www.w3.org/2003/05/soap-envelope"
 xmlns:wsa="http://schemas.xmlsoap.org/ws/2004/08/addressing"
 xmlns:d="http://schemas.xmlsoap.org/ws/2005/04/discovery"
 xmlns:dn="http://www.onvif.org/ver10/network/wsdl"
 xmlns:tds="http://www.onvif.org/ver10/device/wsdl">
<SOAP-ENV:Header>
<wsa:MessageID>urn:uuid:%0%</wsa:MessageID>
<wsa:RelatesTo>%1%</wsa:RelatesTo>
<wsa:To>%2%</wsa:To>
<wsa:Action>http://schemas.xmlsoap.org/ws/2005/04/discovery/ProbeMatches</wsa:Action>
<d:AppSequence InstanceId="%3%" MessageNumber="%4%"/>
</SOAP-ENV:Header>
<SOAP-ENV:Body>
<d:ProbeMatches>
<d:ProbeMatch>
<wsa:EndpointReference>
<wsa:Address>%5%</wsa:Address>
</wsa:EndpointReference>
<d:Types>dn:NetworkVideoTransmitter tds:Device</d:Types>
<d:Scopes>%6%</d:Scopes>
<d:XAddrs>%7%</d:XAddrs>
<d:MetadataVersion>1</d:MetadataVersion>
</d:ProbeMatch>
</d:ProbeMatches>
</SOAP-ENV:Body>
</SOAP-ENV:Envelope>)";

std::string Escape(std::string text) {
    boost::replace_all(text, "&", "&amp;");
    boost::replace_all(text, "<", "&lt;");
    boost::replace_all(text, ">", "&gt;");
    return text;
}

/// When this process first answered, in seconds since 1970: more after each restart.
std::uint32_t GetInstanceId() {
    static auto const id = static_cast<std::uint32_t>(
        std::chrono::duration_cast<std::chrono::seconds>(std::chrono::system_clock::now().time_since_epoch()).count());
    return id;
}

std::uint32_t CountMessage() {
    static std::atomic<std::uint32_t> last = 0;
    return ++last;
}

} // namespace

Response::Response(std::string const& relatesTo, std::string const& address, unsigned short port, bool ssl,
                   utilities::name::Config nameConfig) { // NOLINT: by value as callers link it
    if (relatesTo.empty() || !text::IsXmlLine(relatesTo) || !text::IsXmlLine(address)) return;
    try {
        std::array<std::string, 8> const arguments{to_string(boost::uuids::random_generator()()),
                                                   Escape(relatesTo),
                                                   Escape(address),
                                                   std::to_string(GetInstanceId()),
                                                   std::to_string(CountMessage()),
                                                   GetEndpoint(),
                                                   Escape(MakeScopes(nameConfig)),
                                                   network::MakeLocalWebUrl(ssl, port) + "/onvif/device_service"};
        xml = logging::Format(boost::erase_all_copy(std::string(Message), "\n"), arguments);
    } catch (std::bad_alloc const&) {
        xml.clear(); // not valid
    }
}

} // namespace zarn::onvif::discovery
