#pragma once

#include "host/events/mqtt_settings.h"

#include <zarn/configuration/node/root.h>
#include <zarn/configuration/schema.h>

#include <vector>

namespace zarn::host::events {

/// Describes `settings.events.mqtt`.
std::vector<configuration::Schema> MakeMqttSchemas();

/// `settings.events.mqtt`. Throws configuration::Error when it is enabled without a broker, or holds a password without
/// a user.
MqttSettings ReadMqttSettings(configuration::node::Root const& root);

} // namespace zarn::host::events
