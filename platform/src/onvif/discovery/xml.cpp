#include "onvif/discovery/xml.h"

#include <zarn/text/character.h>

#include <boost/algorithm/string/predicate.hpp>
#include <expat.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <memory>
#include <system_error>

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

/// The number of a character reference, of which "&#" and ";" are left out; 0 when it cannot be read.
unsigned ReadNumber(std::string_view digits) {
    int const base = digits.starts_with('x') ? 16 : 10;
    if (base == 16) digits.remove_prefix(1);
    unsigned number = 0;
    auto const* const end = digits.data() + digits.size();
    auto const [stop, error] = std::from_chars(digits.data(), end, number, base);
    return error == std::errc() && stop == end ? number : 0;
}

/// The document with the parts that clients get wrong without harm replaced by correct ones, so that expat accepts
/// them: a declaration that is incomplete or not at the beginning, "--" in a comment, a reference to a character that
/// XML cannot carry. It is well formed when the document is, apart from these.
std::string MakeStrict(std::string_view text) {
    struct Part {
        std::string_view begin;
        std::string_view end;
        std::string_view replacement;
    };

    constexpr std::array Parts{Part{"<!--", "-->", "<!---->"}, Part{"<?", "?>", "<!---->"},
                               Part{"<![CDATA[", "]]>", "<![CDATA[]]>"}, Part{"&#", ";", "&#32;"}};
    std::string strict;
    while (!text.empty()) {
        auto const* const part =
            std::ranges::find_if(Parts, [&](Part const& each) { return text.starts_with(each.begin); });
        auto length = std::min(text.find_first_of("<&", 1), text.size());
        auto replacement = text.substr(0, length);
        if (part != Parts.end()) {
            auto const end = text.find(part->end, part->begin.size());
            if (end == std::string_view::npos) return strict.append(text); // an error that expat finds
            auto const content = text.substr(part->begin.size(), end - part->begin.size());
            length = end + part->end.size();
            replacement = text.front() == '<' || ReadNumber(content) != 0 ? part->replacement : text.substr(0, length);
        }
        strict.append(replacement);
        text.remove_prefix(length);
    }
    return strict;
}

/// True when a declaration of the document names another encoding than UTF-8.
bool NamesOtherEncoding(pugi::xml_document const& document) {
    auto const children = document.children();
    return std::any_of(children.begin(), children.end(), [](pugi::xml_node const& each) {
        auto const encoding = each.attribute("encoding");
        return each.type() == pugi::node_declaration && encoding && !boost::iequals(encoding.value(), "UTF-8");
    });
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
    constexpr auto Options = pugi::parse_default | pugi::parse_declaration;
    constexpr std::string_view ByteOrderMark = "\xef\xbb\xbf";
    if (text.starts_with(ByteOrderMark)) text.remove_prefix(ByteOrderMark.size());
    return text::IsXml(text) && Checker(maximumDepth).Accepts(MakeStrict(text)) &&
           document.load_buffer(text.data(), text.size(), Options, pugi::encoding_utf8) &&
           !NamesOtherEncoding(document);
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
