#pragma once

#include <zarn/onvif/events/subscription_gauge.h>

#include <boost/json/value.hpp>

#include <cstddef>
#include <span>

namespace zarn::host::events {

/// The events in all subscriptions together.
std::size_t CountQueued(std::span<zarn::onvif::events::SubscriptionStatus const> subscriptions);

/// "count", "queued" and "list", which has "id" and "queued" of the first thousand.
boost::json::value ToJson(std::span<zarn::onvif::events::SubscriptionStatus const> subscriptions);

} // namespace zarn::host::events
