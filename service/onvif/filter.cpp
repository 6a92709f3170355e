#include "filter.h"

#include <algorithm>
#include <iterator>
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
    for (auto const& part : element) {
        if (IsElement(part)) break;
        text += part.value();
    }
    return text;
}

Subscription::Topics Split(std::string_view text) {
    Subscription::Topics topics;
    for (auto end = text.find('|'); end != text.npos; end = text.find('|')) {
        topics.emplace(text.substr(0, end));
        text.remove_prefix(end + 1);
    }
    topics.emplace(text);
    return topics;
}

} // namespace

Subscription::Topics ReadTopics(std::string_view message) {
    pugi::xml_document document;
    // What follows the envelope may be anything; the tree is there up to the first error.
    auto const result = document.load_buffer(message.data(), message.size(),
                                             pugi::parse_default | pugi::parse_ws_pcdata, pugi::encoding_utf8);
    if (result.status == pugi::status_out_of_memory) throw std::bad_alloc();

    auto const body =
        document.document_element().find_child([](auto const& node) { return GetLocalName(node) == "Body"; });
    auto const filter = body.find_child(IsElement).find_child(
        [](auto const& node) { return GetLocalName(node) == "Filter" && FindNamespace(node) == EventsNamespace; });
    auto const parts = filter.children();
    auto const last = std::find_if(std::make_reverse_iterator(parts.end()), std::make_reverse_iterator(parts.begin()),
                                   [](auto const& node) { return IsElement(node); });
    return last.base() == parts.begin() ? Subscription::Topics() : Split(ReadText(*last));
}

} // namespace zarn::service::onvif
