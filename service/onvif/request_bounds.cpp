#include "request_bounds.h"

#include <soapH.h>

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace zarn::service::onvif {

namespace {

constexpr std::size_t MaximumAttributes = 512;
constexpr int UnsupportedMediaType = 415;

// Boost's comparisons look the locale's facets up for every character, which here would be for every field of a
// request.
constexpr char ToLower(char each) { return 'A' <= each && each <= 'Z' ? static_cast<char>(each - 'A' + 'a') : each; }

constexpr auto IsSameLetter = [](char left, char right) { return ToLower(left) == ToLower(right); };

bool IsEqual(std::string_view text, std::string_view other) { return std::ranges::equal(text, other, IsSameLetter); }

bool Contains(std::string_view text, std::string_view part) {
    return std::search(text.begin(), text.end(), part.begin(), part.end(), IsSameLetter) != text.end();
}

/// What gSOAP takes for white space: more than XML does.
bool IsGsoapSpace(char each) { return static_cast<unsigned char>(each) <= ' '; }

/// Whether the body is compressed, or said to hold attachments. gSOAP takes the words for these wherever they stand in
/// the field.
bool IsUnsupported(std::string_view name, std::string_view value) {
    if (IsEqual(name, "Content-Encoding")) return !IsEqual(value, "identity");
    return IsEqual(name, "Content-Type") && (Contains(value, "multipart/") || Contains(value, "application/dime"));
}

/// Whether there is markup that is neither comment nor character data, wherever it stands: "<!" begins no other that a
/// message may have.
bool DeclaresDocumentType(std::string_view body) {
    constexpr std::string_view Markup = "<!";
    for (auto at = body.find(Markup); at != std::string_view::npos; at = body.find(Markup, at + 1)) {
        auto const rest = body.substr(at + Markup.size());
        if (!rest.starts_with("--") && !rest.starts_with("[CDATA[")) return true;
    }
    return false;
}

/// Whatever gSOAP takes for an attribute, there is a "=" in it, or, since it takes names without a value as well, white
/// space behind what is before it, which cannot be the end of an element. Both are counted without a look at what they
/// stand in, so that nothing can be hidden from it.
bool MayHaveTooManyAttributes(std::string_view body) {
    std::size_t values = 0;
    std::size_t words = 0;
    char before = '>';
    for (char const each : body) {
        if (each == '=') ++values;
        if (IsGsoapSpace(each) && !IsGsoapSpace(before) && before != '>') ++words;
        before = each;
    }
    return std::max(values, words) > MaximumAttributes;
}

} // namespace

int CheckBounds(protocol::network::http::Request const& request) {
    for (auto const& [name, value] : request.GetFields()) {
        if (IsUnsupported(name, value)) return UnsupportedMediaType;
    }
    std::string_view const body = request.GetBody();
    if (DeclaresDocumentType(body)) return SOAP_SYNTAX_ERROR;
    return MayHaveTooManyAttributes(body) ? SOAP_OCCURS : SOAP_OK;
}

} // namespace zarn::service::onvif
