#include "host/events/mqtt_status.h"

#include <boost/json/object.hpp>

#include <array>
#include <cstddef>

namespace zarn::host::events {
namespace {

/// In the order of MqttState.
constexpr std::array StateNames{"off", "connecting", "connected", "waiting"};

} // namespace

boost::json::value ToJson(MqttStatus const& status) {
    return boost::json::object{{"state", StateNames.at(static_cast<std::size_t>(status.state))},
                               {"detail", status.detail},
                               {"received", status.received},
                               {"refused", status.refused},
                               {"events", status.events}};
}

} // namespace zarn::host::events
