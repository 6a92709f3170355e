#include "host/video/channel_settings.h"

#include "host/video/source.h"

#include <zarn/configuration/node/dynamic.h>
#include <zarn/configuration/node/primitive.h>

#include <cstdint>
#include <string_view>

namespace zarn::host::video {
namespace {

using configuration::node::Map;
using configuration::node::Read;
using configuration::schema::Line;
using configuration::schema::Option;
using configuration::schema::Rule;

constexpr std::string_view ChannelsPath = "channels";
constexpr std::size_t LongestToken = 64;
constexpr std::size_t LongestName = 64;
constexpr std::size_t LongestId = LongestToken - ChannelsPath.size() - 1;

Rule<std::string> Id() {
    return {"the ID of a channel (at most " + std::to_string(LongestId) + " characters)",
            [](std::string const& key) { return key.size() <= LongestId; }};
}

/// Not quoted in errors, because people put credentials into addresses.
Rule<std::string> SourceText() {
    return {"a source of video (test:PATTERN, rtsp://HOST/PATH, v4l2:/dev/videoN or the path of a file)",
            [](std::string const& text) { return !CheckSource(text); }, true};
}

Rule<std::string> Rate() {
    return {"a frame rate such as 25 or 30000/1001",
            [](std::string const& text) { return ParseFrameRate(text).has_value(); }};
}

ChannelSettings ReadChannel(Map const& entry) {
    auto const rate = ParseFrameRate(Read<std::string>(entry, "video.rate")).value_or(FrameRate{0, 1});
    return {.id = entry.GetKey(),
            .source = Read<std::string>(entry, "source"),
            .user = Read<std::string>(entry, "user"),
            .password = Read<std::string>(entry, "password"),
            .described = meta::data::VideoInfo(
                {Read<std::uint32_t>(entry, "video.width"), Read<std::uint32_t>(entry, "video.height")},
                Read<std::string>(entry, "video.codec"), rate.numerator, rate.denominator)};
}

} // namespace

std::vector<configuration::Schema> MakeChannelSchemas() {
    return {configuration::Schema::Collection(
        std::string(ChannelsPath),
        {
            {"name", "", "The name of the channel; without one its id serves", Option::Optional, Line(LongestName)},
            {"source", "", "Where the video comes from; empty: the channel is only described", Option::Optional,
             SourceText()},
            {"user", "", "User name for an rtsp source", Option::Optional},
            {"password", "", "Password for an rtsp source",
             configuration::schema::Options(Option::Optional) | Option::WriteOnly},
            {"video.codec", "", "Media type of the video until the video itself tells", Option::Optional, Line()},
            {"video.width", std::uint32_t{0}, "Width in pixels until the video itself tells", Option::Optional},
            {"video.height", std::uint32_t{0}, "Height in pixels until the video itself tells", Option::Optional},
            {"video.rate", "0/1", "Frames per second until the video itself tells", Option::Optional, Rate()},
        },
        "The video channels", {}, Id())};
}

std::vector<ChannelSettings> ReadChannels(configuration::node::Root const& root) {
    auto const lock = root.GetLock();
    std::vector<ChannelSettings> channels;
    for (auto const& node : root.Find("channels")->As<configuration::node::Dynamic>()) {
        channels.push_back(ReadChannel(node->As<Map>()));
    }
    return channels;
}

} // namespace zarn::host::video
