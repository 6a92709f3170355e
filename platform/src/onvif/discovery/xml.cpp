#include "onvif/discovery/xml.h"

#include <zarn/text/character.h>

#include <boost/algorithm/string/predicate.hpp>

#include <algorithm>
#include <array>
#include <charconv>
#include <iterator>
#include <system_error>

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

/// True unless an attribute is given twice. Only for an element with few of them.
bool HasDistinctAttributes(pugi::xml_node element) {
    auto const attributes = element.attributes();
    return std::none_of(attributes.begin(), attributes.end(), [&](pugi::xml_attribute const& each) {
        return std::any_of(attributes.begin(), attributes.end(), [&](pugi::xml_attribute const& other) {
            return each != other && std::string_view(each.name()) == other.name();
        });
    });
}

/// Looks at every element of a document.
struct Bounds : pugi::xml_tree_walker {
    explicit Bounds(int maximumDepth) : maximumDepth(maximumDepth) {}

    bool for_each(pugi::xml_node& node) override {
        auto const attributes = node.attributes();
        return depth() < maximumDepth && std::distance(attributes.begin(), attributes.end()) <= MaximumAttributes &&
               HasDistinctAttributes(node);
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

/// The number of a character reference, which begins after "&#"; 0 for what is none, and for one that is too large.
unsigned ReadNumber(std::string_view digits) {
    int base = 10;
    if (digits.starts_with('x')) {
        digits.remove_prefix(1);
        base = 16;
    }
    unsigned number = 0;
    auto const* const end = digits.data() + digits.size();
    auto const [stop, error] = std::from_chars(digits.data(), end, number, base);
    return error == std::errc() && stop == end ? number : 0;
}

/// True for what stands between "&" and ";" when it refers to a character. There are no entities but those of XML, as
/// there is no document type.
bool IsReference(std::string_view text) {
    constexpr std::array<std::string_view, 5> Entities{"lt", "gt", "amp", "apos", "quot"};
    if (text.starts_with('#')) return ReadNumber(text.substr(1)) != 0;
    return std::ranges::find(Entities, text) != Entities.end();
}

/// True when every "&" of a text begins a reference.
bool HasGoodReferences(std::string_view text) {
    for (auto at = text.find('&'); at != std::string_view::npos; at = text.find('&', at)) {
        ++at;
        auto const end = text.find(';', at);
        if (end == std::string_view::npos || !IsReference(text.substr(at, end - at))) return false;
    }
    return true;
}

/// Goes through the markup of a document, which the library reads without looking at all of its rules.
/// Source: XML 1.0, 2.4 Character Data and 3.1 Start-Tags.
class Markup {
public:
    explicit Markup(std::string_view text) : rest(text) {}

    /// True when the texts and the values of the attributes have nothing that is not allowed there.
    bool IsGood() {
        while (!rest.empty()) {
            if (!TakeText()) return false;
            if (rest.empty()) return depth == 0;
            if (!(rest.starts_with("<!") || rest.starts_with("<?") ? SkipSpecial() : TakeTag())) return false;
        }
        return depth == 0;
    }

private:
    bool TakeText() {
        auto const text = rest.substr(0, rest.find('<'));
        rest.remove_prefix(text.size());
        if (depth == 0) return text::Trim(text).empty();
        return text.find("]]>") == std::string_view::npos && HasGoodReferences(text);
    }

    /// Comments, character data sections, instructions: what is in them means nothing.
    bool SkipSpecial() {
        struct Kind {
            std::string_view begin;
            std::string_view end;
            bool anywhere; ///< also beside the root element
        };

        constexpr std::array Kinds{Kind{"<!--", "-->", true}, Kind{"<![CDATA[", "]]>", false}, Kind{"<?", "?>", true}};
        for (auto const& [begin, end, anywhere] : Kinds) {
            if (!rest.starts_with(begin)) continue;
            auto const at = rest.find(end, begin.size());
            if (at == std::string_view::npos || (depth == 0 && !anywhere)) return false;
            rest.remove_prefix(at + end.size());
            return true;
        }
        return false; // a document type
    }

    /// A tag from "<" to ">".
    bool TakeTag() {
        bool const ends = rest.starts_with("</");
        for (;;) {
            auto const at = rest.find_first_of("\"'>");
            if (at == std::string_view::npos) return false;
            char const found = rest[at];
            bool const empty = found == '>' && at > 0 && rest[at - 1] == '/';
            rest.remove_prefix(at + 1);
            if (found != '>') {
                if (!TakeValue(found)) return false;
                continue;
            }
            if (ends)
                --depth;
            else if (!empty)
                ++depth;
            return depth >= 0;
        }
    }

    /// The value of an attribute, of which the quote has been taken.
    bool TakeValue(char quote) {
        auto const end = rest.find(quote);
        if (end == std::string_view::npos) return false;
        auto const value = rest.substr(0, end);
        rest.remove_prefix(end + 1);
        return value.find('<') == std::string_view::npos && HasGoodReferences(value);
    }

    std::string_view rest;
    int depth = 0; ///< elements that are open
};

} // namespace

bool Load(pugi::xml_document& document, std::string_view text, int maximumDepth) {
    constexpr auto Options = pugi::parse_default | pugi::parse_declaration | pugi::parse_doctype;
    constexpr std::string_view ByteOrderMark = "\xef\xbb\xbf";
    if (!text::IsXml(text)) return false;
    if (text.starts_with(ByteOrderMark)) text.remove_prefix(ByteOrderMark.size());
    if (!Markup(text).IsGood()) return false;
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
