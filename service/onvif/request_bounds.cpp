#include "request_bounds.h"

#include <soapH.h>

#include <algorithm>
#include <cctype>
#include <string_view>

namespace zarn::service::onvif {

namespace {

constexpr std::ptrdiff_t MaximumAttributes = 512;
constexpr int UnsupportedMediaType = 415;

// Boost's comparisons look the locale's facets up for every character, which here would be for every field of a
// request.
constexpr auto IsSameLetter = [](unsigned char left, unsigned char right) {
    return std::tolower(left) == std::tolower(right);
};

bool IsEqual(std::string_view text, std::string_view other) { return std::ranges::equal(text, other, IsSameLetter); }

bool Contains(std::string_view text, std::string_view part) {
    return std::search(text.begin(), text.end(), part.begin(), part.end(), IsSameLetter) != text.end();
}

bool IsCompressed(protocol::network::http::Request const& request) {
    return std::ranges::any_of(request.GetFields(), [](auto const& field) {
        return IsEqual(field.first, "Content-Encoding") && !IsEqual(field.second, "identity");
    });
}

/// Whether the body is said to hold attachments. gSOAP takes the words for it wherever they stand in the field.
bool HasAttachments(protocol::network::http::Request const& request) {
    return std::ranges::any_of(request.GetFields(), [](auto const& field) {
        return IsEqual(field.first, "Content-Type") &&
               (Contains(field.second, "multipart/") || Contains(field.second, "application/dime"));
    });
}

} // namespace

int CheckBounds(protocol::network::http::Request const& request) {
    if (IsCompressed(request) || HasAttachments(request)) return UnsupportedMediaType;
    // Counted without a look at what they are: whatever gSOAP takes for an attribute, there is one in it.
    return std::ranges::count(request.GetBody(), '=') > MaximumAttributes ? SOAP_OCCURS : SOAP_OK;
}

} // namespace zarn::service::onvif
