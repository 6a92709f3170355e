#pragma once

#include <zarn/configuration/node/root.h>
#include <zarn/configuration/schema.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zarn::host::events {

/// How events are fetched from an MQTT broker (`settings.events.mqtt`).
struct MqttSettings {
    bool enabled = false;

    /// See ParseBrokerUrl.
    std::string url = {};

    /// The topic filter that is subscribed to; "+" and "#" are wildcards.
    std::string topic = {};

    /// The name under which the broker keeps the session; empty: MakeClientId().
    std::string clientId = {};

    /// Empty: no login.
    std::string user = {};
    std::string password = {};

    /// PEM file of the certificate authorities that an mqtts broker is believed by; empty: those of the system.
    std::string caFile = {};

    bool operator==(MqttSettings const&) const = default;
};

/// Describes `settings.events.mqtt`.
std::vector<configuration::Schema> MakeMqttSchemas();

/// `settings.events.mqtt`. Throws configuration::Error when it is enabled without a broker, or holds a password without
/// a user.
MqttSettings ReadMqttSettings(configuration::node::Root const& root);

/// Where a broker is.
struct BrokerAddress {
    bool tls = false;
    std::string host = {}; ///< a name or an address, an IPv6 address without brackets
    std::uint16_t port = 0;

    bool operator==(BrokerAddress const&) const = default;
};

/// Reads `mqtt://HOST[:PORT]` or `mqtts://HOST[:PORT]` (an IPv6 address in brackets); the ports default to 1883 and
/// 8883. Nothing when the text is something else, also when it holds credentials or a path. Thread: any.
std::optional<BrokerAddress> ParseBrokerUrl(std::string_view url);

/// Whether a text is a topic filter. Source: MQTT 3.1.1, 4.7. Thread: any.
bool IsTopicFilter(std::string const& text);

/// "zarn-host-" and the name of this machine: a client identifier that another machine does not have. Thread: any.
std::string MakeClientId();

} // namespace zarn::host::events
