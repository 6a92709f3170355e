#include "filter.h"

#include <soapH.h>

#include <algorithm>
#include <new>
#include <pugixml.hpp>
#include <string>

namespace zarn::service::onvif {
namespace {

constexpr std::string_view EventsNamespace = "http://www.onvif.org/ver10/events/wsdl";

bool IsElement(pugi::xml_node const& node) { return node.type() == pugi::node_element; }

std::string_view GetLocalName(pugi::xml_node const& node) {
    std::string_view const name = node.name();
    return name.substr(name.find(':') + 1); // npos + 1 is 0
}

std::string_view FindNamespace(pugi::xml_node node) {
    std::string_view const name = node.name();
    auto const colon = name.find(':');
    auto const declaration = colon == name.npos ? "xmlns" : "xmlns:" + std::string(name.substr(0, colon));
    for (; node; node = node.parent()) {
        if (auto const attribute = node.attribute(declaration.c_str())) return attribute.value();
    }
    return {};
}

/// The text of an element up to the first element in it.
std::string ReadText(pugi::xml_node const& element) {
    std::string text;
    for (auto part = element.first_child(); part && !IsElement(part); part = part.next_sibling()) text += part.value();
    return text;
}

/// The text of the last element of the first Filter in a message; empty when there is none.
std::string ReadLastExpression(std::string_view message) {
    pugi::xml_document document;
    auto const result = document.load_buffer(message.data(), message.size(),
                                             pugi::parse_default | pugi::parse_ws_pcdata, pugi::encoding_utf8);
    if (result.status == pugi::status_out_of_memory) throw std::bad_alloc();
    auto const body =
        document.document_element().find_child([](auto const& node) { return GetLocalName(node) == "Body"; });
    auto const filter = body.find_child(IsElement).find_child(
        [](auto const& node) { return GetLocalName(node) == "Filter" && FindNamespace(node) == EventsNamespace; });
    auto last = filter.last_child();
    while (last && !IsElement(last)) last = last.previous_sibling();
    return ReadText(last);
}

/// A text from its first character on that gSOAP does not skip before text: neither a blank nor a control character.
std::string_view TrimStart(std::string_view text) {
    auto const isSkipped = [](char c) { return static_cast<unsigned char>(c) <= ' '; };
    return {std::ranges::find_if_not(text, isSkipped), text.end()};
}

} // namespace

Subscription::Topics ReadTopics(wsnt__FilterType const* filter, std::string_view message) {
    Subscription::Topics topics;
    if (!filter) return topics;
    auto const& parts = filter->__any;
    auto const last = std::find_if(parts.rbegin(), parts.rend(), [](auto const& part) { return part.name != nullptr; });
    if (last == parts.rend()) return topics;

    char const* const read = soap_elt_get_text(&*last);
    std::string_view text = read ? read : "";
    auto const exact = ReadLastExpression(message);
    if (TrimStart(exact) == TrimStart(text)) text = exact;

    for (auto end = text.find('|'); end != text.npos; end = text.find('|')) {
        topics.emplace(text.substr(0, end));
        text.remove_prefix(end + 1);
    }
    topics.emplace(text);
    return topics;
}

} // namespace zarn::service::onvif
