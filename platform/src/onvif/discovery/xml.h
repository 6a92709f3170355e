#pragma once

#include <pugixml.hpp>
#include <string>
#include <string_view>

namespace zarn::onvif::discovery {

inline constexpr char SoapNamespace[] = "http://www.w3.org/2003/05/soap-envelope";
inline constexpr char AddressingNamespace[] = "http://schemas.xmlsoap.org/ws/2004/08/addressing";
inline constexpr char NewAddressingNamespace[] = "http://www.w3.org/2005/08/addressing";
inline constexpr char DiscoveryNamespace[] = "http://schemas.xmlsoap.org/ws/2005/04/discovery";
inline constexpr char DeviceNamespace[] = "http://www.onvif.org/ver10/device/wsdl";
inline constexpr char NetworkNamespace[] = "http://www.onvif.org/ver10/network/wsdl";

/// A name with its namespace.
struct Name {
    std::string_view space;
    std::string_view local;

    bool operator==(Name const&) const = default;
};

/// Reads a document with one root element; false when it is not well formed, is not in UTF-8, has a document type
/// declaration, elements nested deeper than `maximumDepth`, or an element with more than 64 attributes. Some errors
/// that clients make are accepted: white space or comments before the XML declaration, a declaration without version,
/// "--" in a comment, a reference to a character that XML cannot carry (other than 0). text  at most a few times
/// Request::MaximumSize
bool Load(pugi::xml_document& document, std::string_view text, int maximumDepth);

/// True when the element has the name.
bool Is(pugi::xml_node element, Name name);

/// The first child element of that name; null without such a child or without a parent.
pugi::xml_node FindChild(pugi::xml_node parent, Name name);

/// The text of an element, that of its child elements left out.
std::string GetText(pugi::xml_node element);

/// A name that is written in the text of an element, such as "dn:NetworkVideoTransmitter", by the namespaces in force
/// there. Both parts are empty when its prefix is not declared. Valid as long as the document and `text`.
/// Source: Namespaces in XML 1.0.
Name Resolve(pugi::xml_node element, std::string_view text);

} // namespace zarn::onvif::discovery
