#include "host/events/subscriptions_status.h"

#include <boost/json/array.hpp>
#include <boost/json/object.hpp>

#include <algorithm>

namespace zarn::host::events {

namespace json = boost::json;
using zarn::onvif::events::SubscriptionStatus;

namespace {

/// Anybody may ask for the status.
constexpr std::size_t LongestList = 1000;

} // namespace

std::size_t CountQueued(std::span<SubscriptionStatus const> subscriptions) {
    std::size_t queued = 0;
    for (auto const& subscription : subscriptions) queued += subscription.queued;
    return queued;
}

json::value ToJson(std::span<SubscriptionStatus const> subscriptions) {
    json::array list;
    for (auto const& [id, queued] : subscriptions.first(std::min(subscriptions.size(), LongestList)))
        list.push_back(json::object{{"id", id}, {"queued", queued}});
    return json::object{
        {"count", subscriptions.size()}, {"queued", CountQueued(subscriptions)}, {"list", std::move(list)}};
}

} // namespace zarn::host::events
