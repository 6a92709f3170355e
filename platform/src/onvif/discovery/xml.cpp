#include "onvif/discovery/xml.h"

#include "onvif/discovery/text.h"

#include <boost/algorithm/string/predicate.hpp>

#include <algorithm>
#include <iterator>

namespace zarn::onvif::discovery {

namespace {

/// Every resolving of a prefix looks through the attributes of an element and those around it.
constexpr std::ptrdiff_t MaximumAttributes = 64;

/// A name as it is written.
struct Written {
    std::string_view prefix;
    std::string_view local;
};

Written SplitName(std::string_view text) {
    auto const colon = text.find(':');
    if (colon == std::string_view::npos) return {{}, text};
    return {text.substr(0, colon), text.substr(colon + 1)};
}

/// True for an attribute that declares the namespace of the prefix; the empty prefix is the default namespace.
bool Declares(std::string_view attribute, std::string_view prefix) {
    constexpr std::string_view Declaration = "xmlns";
    if (prefix.empty()) return attribute == Declaration;
    return attribute.size() == Declaration.size() + 1 + prefix.size() && attribute.starts_with(Declaration) &&
           attribute[Declaration.size()] == ':' && attribute.ends_with(prefix);
}

/// The namespace of a prefix at an element; empty when there is none.
std::string_view FindNamespace(pugi::xml_node element, std::string_view prefix) {
    for (auto each = element; each.type() == pugi::node_element; each = each.parent()) {
        for (auto const attribute : each.attributes()) {
            if (Declares(attribute.name(), prefix)) return attribute.value();
        }
    }
    return {};
}

/// Looks at every element of a document.
struct Bounds : pugi::xml_tree_walker {
    explicit Bounds(int maximumDepth) : maximumDepth(maximumDepth) {}

    bool for_each(pugi::xml_node& node) override {
        auto const attributes = node.attributes();
        return depth() < maximumDepth && std::distance(attributes.begin(), attributes.end()) <= MaximumAttributes;
    }

    int maximumDepth;
};

/// True when what stands beside the root element is harmless, and there is one root element.
bool HasPlainProlog(pugi::xml_document const& document) {
    auto const children = document.children();
    auto const isRoot = [](pugi::xml_node const& each) { return each.type() == pugi::node_element; };
    auto const isHarmful = [](pugi::xml_node const& each) {
        if (each.type() == pugi::node_doctype) return true;
        auto const encoding = each.attribute("encoding");
        return each.type() == pugi::node_declaration && encoding && !boost::iequals(encoding.value(), "UTF-8");
    };
    return std::count_if(children.begin(), children.end(), isRoot) == 1 &&
           std::none_of(children.begin(), children.end(), isHarmful);
}

/// True for a reference such as "&#0;" or "&#x0;": the library would take it for the end of the text.
bool HasNullReference(std::string_view text) {
    constexpr std::string_view Start = "&#";
    for (auto at = text.find(Start); at != std::string_view::npos; at = text.find(Start, at)) {
        at += Start.size();
        auto digits = text.substr(at);
        if (digits.starts_with('x')) digits.remove_prefix(1);
        auto const end = digits.find_first_not_of('0');
        if (end != 0 && end != std::string_view::npos && digits[end] == ';') return true;
    }
    return false;
}

} // namespace

bool Load(pugi::xml_document& document, std::string_view text, int maximumDepth) {
    constexpr auto Options = pugi::parse_default | pugi::parse_declaration | pugi::parse_doctype;
    if (!IsXmlText(text) || HasNullReference(text)) return false;
    if (!document.load_buffer(text.data(), text.size(), Options, pugi::encoding_utf8)) return false;
    Bounds bounds(maximumDepth);
    return HasPlainProlog(document) && document.traverse(bounds);
}

bool Is(pugi::xml_node element, Name name) {
    if (element.type() != pugi::node_element) return false;
    auto const [prefix, local] = SplitName(element.name());
    return local == name.local && FindNamespace(element, prefix) == name.space;
}

pugi::xml_node FindChild(pugi::xml_node parent, Name name) {
    return parent.find_child([&](pugi::xml_node const& each) { return Is(each, name); });
}

std::string GetText(pugi::xml_node element) {
    std::string text;
    for (auto const child : element.children()) {
        // Comments and character data sections split a text.
        if (child.type() == pugi::node_pcdata || child.type() == pugi::node_cdata) text += child.value();
    }
    return text;
}

Name Resolve(pugi::xml_node element, std::string_view text) {
    auto const [prefix, local] = SplitName(text);
    auto const space = FindNamespace(element, prefix);
    if (space.empty()) return {};
    return {space, local};
}

} // namespace zarn::onvif::discovery
