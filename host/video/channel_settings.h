#pragma once

#include <zarn/configuration/node/root.h>
#include <zarn/configuration/schema.h>
#include <zarn/meta/data/video_info.h>

#include <string>
#include <vector>

namespace zarn::host::video {

/// What the configuration says about one channel.
struct ChannelSettings {
    /// Identifier: letters, digits, '-' and '_'; the last part of the stream's path.
    std::string id;

    /// Where the video comes from (see CheckSource()); empty: the channel is only described, no video is served.
    std::string source;

    /// User name for an `rtsp://` source; empty: none.
    std::string user;

    /// Password for an `rtsp://` source. Never logged.
    std::string password;

    /// The description until the video is known.
    meta::data::VideoInfo described;

    bool operator==(ChannelSettings const&) const = default;
};

/// Describes `channels`. Identifiers and names are as long as ONVIF clients accept: a token ("channels." and the
/// identifier) and a name have up to 64 characters. Source: ONVIF Core, ReferenceToken and Name.
std::vector<configuration::Schema> MakeChannelSchemas();

/// The channels in their order (`channels`).
std::vector<ChannelSettings> ReadChannels(configuration::node::Root const& root);

} // namespace zarn::host::video
