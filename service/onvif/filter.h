#pragma once

#include "subscription.h"

#include <string_view>

namespace zarn::service::onvif {

/// The topics of the Filter in a CreatePullPointSubscription: the text of its last element, whatever the element's name
/// and dialect, split at each "|". Read from the message itself, because gSOAP drops white space at the beginning of an
/// element's text.
/// message  the SOAP message, which gSOAP has accepted
/// Returns no topics for a message without Filter, and for a Filter without elements. Throws std::bad_alloc.
/// Thread: any.
Subscription::Topics ReadTopics(std::string_view message);

} // namespace zarn::service::onvif
