#include "host/events/mqtt_configuration.h"

#include <zarn/configuration/error.h>
#include <zarn/configuration/node/primitive.h>
#include <zarn/text/character.h>

#include <cstddef>
#include <string>

namespace zarn::host::events {
namespace {

using configuration::node::Primitive;
using configuration::schema::Option;
using configuration::schema::Options;
using configuration::schema::Rule;

constexpr char const* EnabledPath = "settings.events.mqtt.enabled";
constexpr char const* UrlPath = "settings.events.mqtt.url";
constexpr char const* TopicPath = "settings.events.mqtt.topic";
constexpr char const* ClientIdPath = "settings.events.mqtt.client_id";
constexpr char const* UserPath = "settings.events.mqtt.user";
constexpr char const* PasswordPath = "settings.events.mqtt.password";
constexpr char const* CaFilePath = "settings.events.mqtt.ca_file";

/// Passwords may be tokens, which are long.
constexpr std::size_t LongestText = 4096;

Rule<std::string> Line() {
    return {"a line of at most 4096 bytes without control characters",
            [](std::string const& text) { return text.size() <= LongestText && zarn::text::IsLine(text); }};
}

/// Not quoted in errors, because people put credentials there.
Rule<std::string> Url() {
    return {"a broker (mqtt://HOST[:PORT] or mqtts://HOST[:PORT], without credentials or path)",
            [](std::string const& text) { return text.empty() || ParseBrokerUrl(text).has_value(); }, true};
}

Rule<std::string> Topic() { return {"a topic filter of at most 1024 bytes, such as site/+/events", IsTopicFilter}; }

} // namespace

std::vector<configuration::Schema> MakeMqttSchemas() {
    auto const optional = Option::Optional;
    return {
        {EnabledPath, false, "Whether events are fetched from an MQTT broker", optional},
        {UrlPath, "", "The broker: mqtt://HOST[:PORT] or mqtts://HOST[:PORT]", optional, Url()},
        {TopicPath, "zarn/events", "The topic filter to subscribe to", optional, Topic()},
        {ClientIdPath, "", "The name of the session at the broker; empty: from the machine's name", optional, Line()},
        {UserPath, "", "User name at the broker; empty: no login", optional, Line()},
        {PasswordPath, "", "Password at the broker", Options(optional) | Option::WriteOnly, Line()},
        {CaFilePath, "", "PEM file of the authorities that the broker is believed by; empty: the system's", optional,
         Line()},
    };
}

MqttSettings ReadMqttSettings(configuration::node::Root const& root) {
    auto const lock = root.GetLock();
    auto const text = [&](char const* path) { return root.Find(path)->As<Primitive<std::string>>().Get(); };
    MqttSettings settings{.enabled = root.Find(EnabledPath)->As<Primitive<bool>>().Get(),
                          .url = text(UrlPath),
                          .topic = text(TopicPath),
                          .clientId = text(ClientIdPath),
                          .user = text(UserPath),
                          .password = text(PasswordPath),
                          .caFile = text(CaFilePath)};
    if (settings.enabled && settings.url.empty()) throw configuration::Error(UrlPath, "there is no broker");
    if (settings.user.empty() && !settings.password.empty())
        throw configuration::Error(UserPath, "there is a password but no user");
    return settings;
}

} // namespace zarn::host::events
