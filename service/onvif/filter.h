#pragma once

#include "subscription.h"

#include <string_view>

class wsnt__FilterType;

namespace zarn::service::onvif {

/// The topics of a subscription's filter: the text of its last element, whatever the element's name and dialect, split
/// at each "|". No topics without a filter or without elements in it; text beside the elements does not count.
/// filter   as gSOAP has read it; null: none
/// message  the SOAP message that it is from. gSOAP drops white space at the beginning of an element's text; it is
///          restored from here, unless the message is not well-formed
/// Throws std::bad_alloc. Thread: any.
Subscription::Topics ReadTopics(wsnt__FilterType const* filter, std::string_view message);

} // namespace zarn::service::onvif
