#pragma once

#include <string>

namespace zarn::test {

inline constexpr char ProbeId[] = "urn:uuid:0a6dc791-2be6-4991-9af1-454778a1917a";
inline constexpr char AnonymousRole[] = "http://schemas.xmlsoap.org/ws/2004/08/addressing/role/anonymous";
inline constexpr char ProbeAction[] = "http://schemas.xmlsoap.org/ws/2005/04/discovery/Probe";

/// A discovery message with replaceable parts. Its prefixes are s, a, d, dn and tds.
struct Probe {
    std::string declaration = R"(<?xml version="1.0" encoding="UTF-8"?>)";
    std::string soap = "http://www.w3.org/2003/05/soap-envelope";
    std::string addressing = "http://schemas.xmlsoap.org/ws/2004/08/addressing";
    std::string discovery = "http://schemas.xmlsoap.org/ws/2005/04/discovery";
    std::string id = std::string("<a:MessageID>") + ProbeId + "</a:MessageID>";
    std::string action = std::string("<a:Action>") + ProbeAction + "</a:Action>";
    std::string replyTo = ""; ///< the element ReplyTo, and any other headers
    std::string body = "<d:Probe><d:Types>dn:NetworkVideoTransmitter</d:Types></d:Probe>";

    std::string ToString() const {
        return declaration + "<s:Envelope xmlns:s='" + soap + "' xmlns:a='" + addressing + "' xmlns:d='" + discovery +
               "' xmlns:dn='http://www.onvif.org/ver10/network/wsdl' "
               "xmlns:tds='http://www.onvif.org/ver10/device/wsdl'>"
               "<s:Header>" +
               id + action + "<a:To s:mustUnderstand='1'>urn:schemas-xmlsoap-org:ws:2005:04:discovery</a:To>" +
               replyTo + "</s:Header><s:Body>" + body + "</s:Body></s:Envelope>";
    }
};

/// A probe for these types, given as the content of the Types element.
inline Probe ProbeForTypes(std::string const& types) {
    return {.body = "<d:Probe><d:Types>" + types + "</d:Types></d:Probe>"};
}

/// A probe for these scopes, with additional attributes on the Scopes element.
inline Probe ProbeForScopes(std::string const& scopes, std::string const& attributes = "") {
    return {.body = "<d:Probe><d:Types/><d:Scopes " + attributes + ">" + scopes + "</d:Scopes></d:Probe>"};
}

} // namespace zarn::test
