#include "request_bounds.h"

#include <boost/algorithm/string/predicate.hpp>
#include <soapH.h>

#include <algorithm>

namespace zarn::service::onvif {

namespace {

constexpr std::ptrdiff_t MaximumAttributes = 512;
constexpr int UnsupportedMediaType = 415;

bool IsCompressed(protocol::network::http::Request const& request) {
    return std::ranges::any_of(request.GetFields(), [](auto const& field) {
        return boost::iequals(field.first, "Content-Encoding") && !boost::iequals(field.second, "identity");
    });
}

/// Whether the body is said to hold attachments. gSOAP takes the words for it wherever they stand in the field.
bool HasAttachments(protocol::network::http::Request const& request) {
    return std::ranges::any_of(request.GetFields(), [](auto const& field) {
        return boost::iequals(field.first, "Content-Type") &&
               (boost::icontains(field.second, "multipart/") || boost::icontains(field.second, "application/dime"));
    });
}

} // namespace

int CheckBounds(protocol::network::http::Request const& request) {
    if (IsCompressed(request) || HasAttachments(request)) return UnsupportedMediaType;
    // Counted without a look at what they are: whatever gSOAP takes for an attribute, there is one in it.
    return std::ranges::count(request.GetBody(), '=') > MaximumAttributes ? SOAP_OCCURS : SOAP_OK;
}

} // namespace zarn::service::onvif
