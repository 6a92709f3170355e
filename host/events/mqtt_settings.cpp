#include "host/events/mqtt_settings.h"

#include <zarn/text/character.h>

#include <boost/asio/ip/host_name.hpp>
#include <mosquitto.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>

namespace zarn::host::events {
namespace {

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

bool IsHost(std::string_view text) {
    return !text.empty() && text.size() <= LongestHost && std::all_of(text.begin(), text.end(), [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '.' || c == '-' ||
               c == '_';
    });
}

bool IsIpv6(std::string_view text) {
    return !text.empty() && text.size() <= LongestHost && std::all_of(text.begin(), text.end(), [](char c) {
        return (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F') || (c >= '0' && c <= '9') || c == ':' || c == '.';
    });
}

std::optional<std::uint16_t> ReadPort(std::string_view text) {
    std::uint16_t port = 0;
    auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), port);
    if (error != std::errc{} || end != text.data() + text.size() || port == 0) return {};
    return port;
}

} // namespace

std::optional<BrokerAddress> ParseBrokerUrl(std::string_view url) {
    auto const scheme =
        std::find_if(Schemes.begin(), Schemes.end(), [&](auto const& row) { return url.starts_with(row.prefix); });
    if (scheme == Schemes.end()) return {};
    url.remove_prefix(scheme->prefix.size());

    bool const bracketed = url.starts_with('[');
    auto const end = bracketed ? url.find(']') : url.find(':');
    if (bracketed && end == url.npos) return {};
    auto const host = bracketed ? url.substr(1, end - 1) : url.substr(0, end);
    if (!(bracketed ? IsIpv6(host) : IsHost(host))) return {};

    auto const rest = bracketed ? url.substr(end + 1) : url.substr(host.size());
    if (rest.empty()) return BrokerAddress{scheme->tls, std::string(host), scheme->port};
    auto const port = rest.front() == ':' ? ReadPort(rest.substr(1)) : std::nullopt;
    if (!port) return {};
    return BrokerAddress{scheme->tls, std::string(host), *port};
}

bool IsTopicFilter(std::string const& text) {
    return !text.empty() && text.size() <= LongestTopic && zarn::text::IsLine(text) &&
           mosquitto_validate_utf8(text.data(), static_cast<int>(text.size())) == MOSQ_ERR_SUCCESS &&
           mosquitto_sub_topic_check(text.c_str()) == MOSQ_ERR_SUCCESS;
}

std::string MakeClientId() { return "zarn-host-" + boost::asio::ip::host_name(); }

} // namespace zarn::host::events
