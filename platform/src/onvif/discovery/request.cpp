#include "onvif/discovery/xml.h"

#include <zarn/onvif/discovery/request.h>
#include <zarn/onvif/discovery/scopes.h>
#include <zarn/text/character.h>

#include <algorithm>
#include <array>

namespace zarn::onvif::discovery {

namespace {

constexpr char ProbeAction[] = "http://schemas.xmlsoap.org/ws/2005/04/discovery/Probe";
constexpr char Anonymous[] = "http://schemas.xmlsoap.org/ws/2004/08/addressing/role/anonymous";

/// What this device is.
constexpr std::array OurTypes{Name{DeviceNamespace, "Device"}, Name{NetworkNamespace, "NetworkVideoTransmitter"}};

/// The items of a list that white space separates.
std::vector<std::string_view> Split(std::string_view list) {
    std::vector<std::string_view> items;
    for (auto rest = text::Trim(list); !rest.empty();) {
        auto const item = rest.substr(0, rest.find_first_of(text::WhiteSpace));
        items.push_back(item);
        rest = text::Trim(rest.substr(item.size()));
    }
    return items;
}

/// A child of the message's header, or of a part of it, by either edition of WS-Addressing.
pugi::xml_node FindAddressing(pugi::xml_node parent, std::string_view local) {
    auto const found = FindChild(parent, {AddressingNamespace, local});
    return found ? found : FindChild(parent, {NewAddressingNamespace, local});
}

std::string GetTrimmedText(pugi::xml_node element) { return std::string(text::Trim(GetText(element))); }

bool MatchesTypes(pugi::xml_node types) {
    auto const text = GetText(types);
    auto const names = Split(text);
    auto const isOurs = [&](std::string_view name) {
        return std::ranges::find(OurTypes, Resolve(types, name)) != OurTypes.end();
    };
    auto const looked = std::min(names.size(), Request::MaximumTypes);
    return names.empty() || std::any_of(names.begin(), names.begin() + looked, isOurs);
}

bool MatchesScopes(pugi::xml_node scopes) {
    auto const text = GetText(scopes);
    return MayMatchScopes(Split(text), scopes.attribute("MatchBy").value());
}

/// True for a Probe that this device is to answer.
bool AsksForThisDevice(pugi::xml_node header, pugi::xml_node body) {
    auto const action = GetTrimmedText(FindAddressing(header, "Action"));
    auto const probe = FindChild(body, {DiscoveryNamespace, "Probe"});
    return (action.empty() || action == ProbeAction) && probe &&
           MatchesTypes(FindChild(probe, {DiscoveryNamespace, "Types"})) &&
           MatchesScopes(FindChild(probe, {DiscoveryNamespace, "Scopes"}));
}

bool IsAcceptable(std::string const& text) {
    return text.size() <= Request::MaximumTextLength && text::IsXmlLine(text);
}

} // namespace

Request::Request(std::string const& text) {
    pugi::xml_document document;
    if (text.size() > MaximumSize || !Load(document, text, MaximumDepth)) return;
    auto const envelope = document.document_element();
    auto const body = FindChild(envelope, {SoapNamespace, "Body"});
    if (!Is(envelope, {SoapNamespace, "Envelope"}) || !body) return;
    auto const header = FindChild(envelope, {SoapNamespace, "Header"});
    auto const id = GetTrimmedText(FindAddressing(header, "MessageID"));
    auto const replyTo = GetTrimmedText(FindAddressing(FindAddressing(header, "ReplyTo"), "Address"));
    if (!IsAcceptable(id) || !IsAcceptable(replyTo)) return;
    parseError = false;
    address = replyTo.empty() ? Anonymous : replyTo;
    if (AsksForThisDevice(header, body)) messageId = id;
}

} // namespace zarn::onvif::discovery
