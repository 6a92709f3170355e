#include "host/events/status.h"

#include <boost/json/array.hpp>
#include <boost/json/object.hpp>

#include <algorithm>
#include <array>
#include <utility>

namespace zarn::host::events {

using zarn::onvif::events::SubscriptionStatus;

namespace {

/// In the order of MqttState.
constexpr std::array StateNames{"off", "connecting", "connected", "waiting"};

/// The status is public, so the list is bounded.
constexpr std::size_t LongestList = 1000;

} // namespace

std::size_t CountQueued(std::span<SubscriptionStatus const> subscriptions) {
    std::size_t queued = 0;
    for (auto const& subscription : subscriptions) queued += subscription.queued;
    return queued;
}

boost::json::value ToJson(MqttStatus const& status) {
    return boost::json::object{{"state", StateNames.at(static_cast<std::size_t>(status.state))},
                               {"detail", status.detail},
                               {"received", status.received},
                               {"refused", status.refused},
                               {"events", status.events}};
}

boost::json::value ToJson(std::span<SubscriptionStatus const> subscriptions) {
    boost::json::array list;
    for (auto const& [id, queued] : subscriptions.first(std::min(subscriptions.size(), LongestList)))
        list.push_back(boost::json::object{{"id", id}, {"queued", queued}});
    return boost::json::object{
        {"count", subscriptions.size()}, {"queued", CountQueued(subscriptions)}, {"list", std::move(list)}};
}

} // namespace zarn::host::events
