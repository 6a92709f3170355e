#include "onvif/discovery/xml.h"

#include <boost/algorithm/string/predicate.hpp>
#include <expat.h>

#include <memory>

namespace zarn::onvif::discovery {

namespace {

/// Every resolving of a prefix looks through the attributes of an element and those around it.
constexpr int MaximumAttributes = 64;

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

/// The namespace of a prefix at an element; empty when the prefix is not declared.
std::string_view FindNamespace(pugi::xml_node element, std::string_view prefix) {
    for (auto each = element; each.type() == pugi::node_element; each = each.parent()) {
        for (auto const attribute : each.attributes()) {
            if (Declares(attribute.name(), prefix)) return attribute.value();
        }
    }
    return {};
}

/// Reads a document with expat, which checks all rules of XML 1.0, and counts what the tree may hold. The parser that
/// makes the tree passes over many errors. Names are read without their namespaces, because expat would refuse a
/// message for a prefix that is not declared, and clients send such prefixes where they mean nothing.
class Checker {
public:
    explicit Checker(int maximumDepth) : maximumDepth(maximumDepth) {}

    bool Accepts(std::string_view text) {
        std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> const owner(XML_ParserCreate("UTF-8"),
                                                                                 &XML_ParserFree);
        if (!owner) return false;
        parser = owner.get();
        XML_SetUserData(parser, this);
        XML_SetElementHandler(parser, &OnStart, &OnEnd);
        XML_SetXmlDeclHandler(parser, &OnDeclaration);
        XML_SetStartDoctypeDeclHandler(parser, &OnDocumentType);
        return XML_Parse(parser, text.data(), static_cast<int>(text.size()), XML_TRUE) == XML_STATUS_OK;
    }

private:
    static void OnStart(void* self, XML_Char const*, XML_Char const** attributes) {
        auto& checker = *static_cast<Checker*>(self);
        int count = 0; // of names and values
        while (attributes[count] != nullptr) ++count;
        if (++checker.depth > checker.maximumDepth || count > 2 * MaximumAttributes) checker.Refuse();
    }

    static void OnEnd(void* self, XML_Char const*) { --static_cast<Checker*>(self)->depth; }

    static void OnDeclaration(void* self, XML_Char const*, XML_Char const* encoding, int) {
        if (encoding != nullptr && !boost::iequals(encoding, "UTF-8")) static_cast<Checker*>(self)->Refuse();
    }

    static void OnDocumentType(void* self, XML_Char const*, XML_Char const*, XML_Char const*, int) {
        static_cast<Checker*>(self)->Refuse();
    }

    void Refuse() { XML_StopParser(parser, XML_FALSE); }

    int const maximumDepth;
    int depth = 0;
    XML_Parser parser = nullptr;
};

} // namespace

bool Load(pugi::xml_document& document, std::string_view text, int maximumDepth) {
    constexpr std::string_view ByteOrderMark = "\xef\xbb\xbf";
    if (!Checker(maximumDepth).Accepts(text)) return false;
    if (text.starts_with(ByteOrderMark)) text.remove_prefix(ByteOrderMark.size());
    return bool(document.load_buffer(text.data(), text.size(), pugi::parse_default, pugi::encoding_utf8));
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
