#include "host/events/mqtt_settings.h"

#include <zarn/configuration/error.h>
#include <zarn/configuration/node/primitive.h>
#include <zarn/network/authority.h>
#include <zarn/text/character.h>

#include <boost/asio/ip/address_v6.hpp>
#include <boost/asio/ip/host_name.hpp>
#include <mosquitto.h>

#include <algorithm>
#include <array>
#include <cstddef>

namespace zarn::host::events {
namespace {

using configuration::node::Read;
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

struct Scheme {
    std::string_view prefix;
    bool tls;
    std::uint16_t port;
};

constexpr std::array Schemes{
    Scheme{"mqtt://", false, 1883},
    Scheme{"mqtts://", true, 8883},
};

constexpr std::size_t LongestHost = 253;
constexpr std::size_t LongestTopic = 1024;

bool IsHost(network::Authority const& authority) {
    if (authority.host.size() > LongestHost) return false;
    if (authority.bracketed) {
        boost::system::error_code error;
        boost::asio::ip::make_address_v6(authority.host, error);
        return !error && authority.host.find('%') == authority.host.npos;
    }
    return std::ranges::all_of(authority.host,
                               [](char c) { return text::IsAlphanumeric(c) || c == '.' || c == '-' || c == '_'; });
}

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
    auto const text = [&](char const* path) { return Read<std::string>(root, path); };
    MqttSettings settings{.enabled = Read<bool>(root, EnabledPath),
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

std::optional<BrokerAddress> ParseBrokerUrl(std::string_view url) {
    auto const scheme =
        std::find_if(Schemes.begin(), Schemes.end(), [&](auto const& row) { return url.starts_with(row.prefix); });
    if (scheme == Schemes.end()) return {};
    auto const authority = network::ParseAuthority(url.substr(scheme->prefix.size()));
    if (!authority || !IsHost(*authority)) return {};
    return BrokerAddress{scheme->tls, std::string(authority->host), authority->port.value_or(scheme->port)};
}

bool IsTopicFilter(std::string const& text) {
    return !text.empty() && text.size() <= LongestTopic && zarn::text::IsLine(text) &&
           mosquitto_validate_utf8(text.data(), static_cast<int>(text.size())) == MOSQ_ERR_SUCCESS &&
           mosquitto_sub_topic_check(text.c_str()) == MOSQ_ERR_SUCCESS;
}

std::string MakeClientId() { return "zarn-host-" + boost::asio::ip::host_name(); }

} // namespace zarn::host::events
