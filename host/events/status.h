#pragma once

#include <zarn/onvif/events/subscription_gauge.h>

#include <boost/json/value.hpp>

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace zarn::host::events {

/// The state of the connection to the broker.
enum class MqttState {
    Off,        ///< disabled
    Connecting, ///< until the broker has confirmed the subscription
    Connected,  ///< receiving events
    Waiting,    ///< it failed and will be tried again
};

/// The status of the intake over MQTT, for people and monitoring. Holds no secrets.
struct MqttStatus {
    MqttState state = MqttState::Off;
    std::string detail = {};    ///< why the last connection failed; empty when it did not
    std::uint64_t received = 0; ///< messages
    std::uint64_t refused = 0;  ///< of these, messages without valid events
    std::uint64_t events = 0;   ///< events in the others
};

/// The events that wait in all subscriptions together.
std::size_t CountQueued(std::span<zarn::onvif::events::SubscriptionStatus const> subscriptions);

/// Parts of `GET /api/health`, see docs/host.md. At most the first thousand subscriptions are listed.
boost::json::value ToJson(MqttStatus const& status);
boost::json::value ToJson(std::span<zarn::onvif::events::SubscriptionStatus const> subscriptions);

} // namespace zarn::host::events
