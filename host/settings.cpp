#include "host/settings.h"

#include "host/events/mqtt_configuration.h"
#include "host/failed_logins.h"
#include "host/video/check_source.h"
#include "host/video/frame_rate.h"
#include "host/web/challenges.h"

#include <zarn/configuration/error.h>
#include <zarn/configuration/node/dynamic.h>
#include <zarn/configuration/node/primitive.h>
#include <zarn/configuration/schema.h>
#include <zarn/logging/format.h>
#include <zarn/text/character.h>

#include <cstddef>
#include <limits>
#include <memory>
#include <optional>
#include <utility>

namespace zarn::host {
namespace {

using configuration::Schema;
using configuration::node::Map;
using configuration::node::Primitive;
using configuration::schema::Option;
using configuration::schema::Rule;

constexpr std::size_t MaximumTextLength = 256;

Rule<std::string> Line() {
    return {"a line of at most 256 bytes of UTF-8 without characters that XML cannot carry",
            [](std::string const& text) { return text.size() <= MaximumTextLength && text::IsXmlLine(text); }};
}

Rule<std::uint16_t> Port() { return {"a port (0 to 65535; 0 takes a free one)", {}}; }

Rule<std::uint32_t> Number(std::uint32_t least, std::uint32_t most) {
    return {"a number from " + std::to_string(least) + " to " + std::to_string(most),
            [least, most](std::uint32_t value) { return value >= least && value <= most; }};
}

Rule<std::string> Source() {
    return {"a source of video (test:PATTERN, rtsp://HOST/PATH, v4l2:/dev/videoN or the path of a file)",
            [](std::string const& text) { return !video::CheckSource(text); }, true};
}

Rule<std::string> FrameRate() {
    return {"a frame rate such as 25 or 30000/1001",
            [](std::string const& text) { return video::ParseFrameRate(text).has_value(); }};
}

std::vector<Schema> IdentitySchemas() {
    return {
        {"identity.manufacturer", "Zarnsuite", "Who made the device", {}, Line()},
        {"identity.model", "zarn-host", "The model of the device", {}, Line()},
        {"identity.firmware", ZARN_VERSION, "The version of the device's software", {}, Line()},
        {"identity.hardware", "generic", "The hardware of the device", {}, Line()},
        {"identity.name", "zarn-host", "The name of the device", {}, Line()},
        {"identity.location", "", "Where the device is", {}, Line()},
    };
}

std::vector<Schema> SettingsSchemas() {
    constexpr std::uint32_t Many = 1000000;
    web::Limits const limits;
    auto const number = [](auto value) { return static_cast<std::uint32_t>(value); };
    return {
        {WebPortPath, std::uint16_t{8080}, "TCP port of the web server", {}, Port()},
        {RtspPortPath, std::uint16_t{8554}, "TCP port of the RTSP server", {}, Port()},
        // Described by the module as well, which is not there yet when the file is read, or only checked.
        {OnvifPath, false, "The boolean denoting whether ONVIF is enabled for Zarnsuite"},
        {DiscoveryAnywherePath, false, "Whether probes of networks are answered that the machine is not connected to"},
        {AuthenticationPath, true, "Whether clients have to log in"},
        {NonceSecondsPath,
         number(web::Challenges::LongestLife.count()),
         "Seconds for which the challenge of a login counts",
         {},
         Number(1, number(web::Challenges::LongestLife.count()))},
        {"settings.tls.certificate", "", "PEM file with the certificate chain; empty: no TLS"},
        {"settings.tls.private_key", "", "PEM file with the private key of the certificate"},
        {"settings.limits.connections", number(limits.connections), "Connections in all", {}, Number(1, Many)},
        {"settings.limits.connections_per_address",
         number(limits.connectionsPerAddress),
         "Connections from one address",
         {},
         Number(1, Many)},
        {"settings.limits.exchanges", number(limits.exchanges), "Requests under way", {}, Number(1, Many)},
        {"settings.limits.body_bytes",
         number(limits.bodyBytes),
         "Bytes of a request's body",
         {},
         Number(1024, 1024 * 1024 * 1024)},
        {"settings.limits.header_seconds",
         number(limits.headerTime.count()),
         "Seconds that the header of a request may take to come",
         {},
         Number(1, 3600)},
        {"settings.limits.idle_seconds",
         number(limits.idleTime.count()),
         "Seconds that a connection may be silent, and a body or response may take",
         {},
         Number(1, 86400)},
        {FailedLoginsPath,
         number(FailedLogins::DefaultLimit),
         "Wrong logins from one address within a minute before further ones are refused",
         {},
         Number(1, 10000)},
        {QueuedWarningPath,
         std::uint32_t{100000},
         "Events waiting in all subscriptions together above which the log warns",
         {},
         Number(1, 1000000000)},
    };
}

Schema ChannelsSchema() {
    return Schema::Collection(
        "channels",
        {
            {"name", "", "The name of the channel; without one its id serves", Option::Optional, Line()},
            {"source", "", "Where the video comes from; empty: the channel is only described", Option::Optional,
             Source()},
            {"user", "", "User name for an rtsp source", Option::Optional},
            {"password", "", "Password for an rtsp source",
             configuration::schema::Options(Option::Optional) | Option::WriteOnly},
            {"video.codec", "", "Media type of the video until the video itself tells", Option::Optional, Line()},
            {"video.width", std::uint32_t{0}, "Width in pixels until the video itself tells", Option::Optional},
            {"video.height", std::uint32_t{0}, "Height in pixels until the video itself tells", Option::Optional},
            {"video.rate", "0/1", "Frames per second until the video itself tells", Option::Optional, FrameRate()},
        },
        "The video channels");
}

template <class T>
T Read(Map const& map, std::string_view path) {
    auto const node = map.Find(boost::string_view(path.data(), path.size()));
    return node->As<Primitive<T>>().Get();
}

} // namespace

void DescribeSettings(configuration::node::Root& root) {
    root.Schema(IdentitySchemas());
    root.Schema(SettingsSchemas());
    root.Schema(events::MakeMqttSchemas());
    root.Schema({ChannelsSchema()});
}

utilities::name::Config ReadIdentity(configuration::node::Root const& root) {
    auto const text = [&](char const* path) { return Read<std::string>(root, path); };
    return utilities::name::Config({.manufacturer = text("identity.manufacturer"),
                                    .model = text("identity.model"),
                                    .firmware = text("identity.firmware"),
                                    .hardware = text("identity.hardware"),
                                    .location = text("identity.location"),
                                    .name = text("identity.name")});
}

web::Limits ReadLimits(configuration::node::Root const& root) {
    auto const number = [&](char const* path) { return Read<std::uint32_t>(root, path); };
    return {.connections = number("settings.limits.connections"),
            .connectionsPerAddress = number("settings.limits.connections_per_address"),
            .exchanges = number("settings.limits.exchanges"),
            .bodyBytes = number("settings.limits.body_bytes"),
            .headerTime = std::chrono::seconds(number("settings.limits.header_seconds")),
            .idleTime = std::chrono::seconds(number("settings.limits.idle_seconds"))};
}

video::RtspLimits ReadRtspLimits(configuration::node::Root const& root) {
    auto const limits = ReadLimits(root);
    return {.connections = limits.connections, .connectionsPerAddress = limits.connectionsPerAddress};
}

std::size_t ReadFailedLoginsLimit(configuration::node::Root const& root) {
    return Read<std::uint32_t>(root, FailedLoginsPath);
}

std::chrono::seconds ReadNonceLife(configuration::node::Root const& root) {
    return std::chrono::seconds(Read<std::uint32_t>(root, NonceSecondsPath));
}

std::size_t ReadQueuedWarning(configuration::node::Root const& root) {
    return Read<std::uint32_t>(root, QueuedWarningPath);
}

TlsFiles ReadTlsFiles(configuration::node::Root const& root) {
    TlsFiles files{Read<std::string>(root, "settings.tls.certificate"),
                   Read<std::string>(root, "settings.tls.private_key")};
    if (files.certificate.empty() != files.privateKey.empty()) {
        bool const lacksKey = files.privateKey.empty();
        throw configuration::Error(lacksKey ? "settings.tls.private_key" : "settings.tls.certificate",
                                   lacksKey ? "there is a certificate but no private key"
                                            : "there is a private key but no certificate");
    }
    return files;
}

std::vector<video::ChannelSettings> ReadChannels(configuration::node::Root const& root) {
    auto const lock = root.GetLock();
    std::vector<video::ChannelSettings> channels;
    for (auto const& node : root.Find("channels")->As<configuration::node::Dynamic>()) {
        auto const& entry = node->As<Map>();
        auto const rate =
            video::ParseFrameRate(Read<std::string>(entry, "video.rate")).value_or(video::FrameRate{0, 1});
        channels.push_back({.id = entry.GetKey(),
                            .source = Read<std::string>(entry, "source"),
                            .user = Read<std::string>(entry, "user"),
                            .password = Read<std::string>(entry, "password"),
                            .described = meta::data::VideoInfo(
                                {Read<std::uint32_t>(entry, "video.width"), Read<std::uint32_t>(entry, "video.height")},
                                Read<std::string>(entry, "video.codec"), rate.numerator, rate.denominator)});
    }
    return channels;
}

bool ReadBool(configuration::node::Root const& root, std::string_view path) { return Read<bool>(root, path); }

std::uint16_t ReadPort(configuration::node::Root const& root, std::string_view path) {
    return Read<std::uint16_t>(root, path);
}

void OverrideSetting(configuration::node::Root const& root, std::string const& path, std::string const& text) {
    auto const node = root.Find(boost::string_view(path.data(), path.size()));
    if (!node) throw configuration::Error(logging::ToLine(path, MaximumTextLength), "there is no such setting");
    if (!node->Is<configuration::node::Value>())
        throw configuration::Error(path, "this is a group of settings, no value");
    node->As<configuration::node::Value>().OverrideFromString(text);
}

} // namespace zarn::host
