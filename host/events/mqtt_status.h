#pragma once

#include <boost/json/value.hpp>

#include <cstdint>
#include <string>

namespace zarn::host::events {

/// How far the connection to the broker is.
enum class MqttState {
    Off,        ///< not wanted
    Connecting, ///< until the broker has confirmed the subscription
    Connected,  ///< events come
    Waiting,    ///< it failed and will be tried again
};

/// What people and monitoring are told of the intake over MQTT. Holds no secrets.
struct MqttStatus {
    MqttState state = MqttState::Off;
    std::string detail = {};    ///< why the last connection failed; empty when it did not
    std::uint64_t received = 0; ///< messages that came
    std::uint64_t refused = 0;  ///< messages of these that held no events, or wrong ones
    std::uint64_t events = 0;   ///< events that the others held
};

/// The status as a part of `GET /api/health`.
boost::json::value ToJson(MqttStatus const& status);

} // namespace zarn::host::events
