#pragma once

#include "configuration_values.h"
#include "service.h"

#include <zarn/configuration/node/dynamic.h>
#include <zarn/configuration/node/root.h>
#include <zarn/meta/data/video_info.h>

#include <soapH.h>

#include <functional>
#include <memory>
#include <string>
#include <utility>

namespace zarn::service::onvif {

/// Yields the present video description of a channel, given the channel's id.
using ChannelInfo = std::function<meta::data::VideoInfo(std::string const&)>;

/// Base of both media services: the channels of the configuration and their video descriptions.
template <class Binding>
class ChannelService : public Service<Binding> {
public:
    /// ssl  whether the host's web server speaks TLS
    ChannelService(struct soap* soap, std::shared_ptr<configuration::node::Root> configuration, ChannelInfo channelInfo,
                   bool ssl, ZarnAuthenticationEngine const* engine)
        : Service<Binding>(soap, engine),
          configuration(std::move(configuration)),
          ssl(ssl),
          channelInfo(std::move(channelInfo)) {}

protected:
    std::shared_ptr<configuration::node::Root> configuration;
    bool ssl;
    ChannelInfo channelInfo;
};

/// The id of the channel that a token names: what follows its last ".", or all of it.
std::string GetChannelId(std::string const& token);

/// The `channels` of the configuration. Throws object::BadCast with "unknown" when they are not a dynamic node.
std::shared_ptr<configuration::node::Dynamic const> GetChannels(configuration::node::Root const& root);

/// The encoding's name in a codec text such as "video/x-h264": what follows the last "-", or else the last "/", in
/// upper case by the global locale. Empty when the text holds neither.
std::string ConvertCodec(std::string const& codec);

/// The token that a Media2 request asks for: its profile token if it has one, else its configuration token, else "".
std::string GetToken(tr2__GetConfiguration const* request);

// The makers allocate what they make in the context, and return null without memory. In all of them:
// token  the channel's path in the configuration, which every object of the channel bears as its token
// name   the channel's name
// info   its video; a size that no int holds keeps its bits

/// The video source of a channel: its whole picture.
tt__VideoSourceConfiguration* MakeVideoSourceConfiguration(soap* soap, std::string const& token,
                                                           std::string const& name, meta::data::VideoInfo const& info);

/// The video encoder of a channel as the ver10 service describes one: H.264, whatever the codec, and no multicast.
tt__VideoEncoderConfiguration* MakeVideoEncoderConfiguration(soap* soap, std::string const& token,
                                                             std::string const& name,
                                                             meta::data::VideoInfo const& info);

/// The metadata of a channel: analytics, and no multicast.
tt__MetadataConfiguration* MakeMetadataConfiguration(soap* soap, std::string const& token, std::string const& name);

/// The ver10 profile of a channel, with the three configurations above.
tt__Profile* MakeProfile(soap* soap, std::string const& token, std::string const& name,
                         meta::data::VideoInfo const& info);

/// The video size of a channel.
tt__VideoResolution* MakeResolution(soap* soap, meta::data::VideoInfo const& info);

/// A range of numbers, both ends included. Null without memory.
tt__IntRange* MakeIntRange(soap* soap, int minimum, int maximum);

/// Width and height of a channel's picture as the schema's numbers.
inline std::pair<int, int> GetSize(meta::data::VideoInfo const& info) {
    return {static_cast<int>(info.GetResolution().first), static_cast<int>(info.GetResolution().second)};
}

/// Fills what every configuration entity of a channel has.
template <class Configuration>
void Identify(Configuration& configuration, std::string const& token, std::string const& name) {
    configuration.Name = name;
    configuration.UseCount = 1;
    configuration.token = token;
}

/// The address of a channel's live stream: rtsp://ADDRESS:PORT/ and the token's path with "/" for ".".
/// Any token yields one. Throws object::BadCast when the RTSP port's setting is missing or of the wrong type.
std::string MakeStreamUri(configuration::node::Root const& root, std::string const& token);

/// The address of a channel's newest still image on the web server. Otherwise as MakeStreamUri.
/// ssl  whether the web server speaks TLS
std::string MakeSnapshotUri(configuration::node::Root const& root, bool ssl, std::string const& token);

/// Visits the channels in the order of the configuration, whose lock is held meanwhile.
///
/// token  only the channel with this token; empty: all
/// visit  takes one: (token, name)
/// Throws object::BadCast when `channels` is not a dynamic node ("unknown"), an entry is not a map
/// ("zarn.configuration.node.Map") or its name not a string ("zarn.configuration.node.String").
template <class Visit>
void VisitChannels(configuration::node::Root const& root, std::string const& token, Visit visit) {
    auto const lock = root.GetLock();
    auto const channels = GetChannels(root);
    for (auto const& entry : *channels) {
        auto const path = entry->GetPath();
        if (!token.empty() && token != path) continue;
        visit(path, ReadName(entry->As<configuration::node::Map>()));
    }
}

/// Appends one object per channel to `out`; order, lock and what is thrown are those of VisitChannels.
///
/// maker        makes one: (soap*, token, name, VideoInfo const&) -> pointer; a null one is left out
/// channelInfo  asked for every selected channel
/// token        only the channel with this token; empty: all
template <class List, class Maker>
void PopulatePerChannel(soap* soap, List& out, Maker maker, ChannelInfo const& channelInfo,
                        std::shared_ptr<configuration::node::Root> const& root, std::string const& token) {
    VisitChannels(*root, token, [&](std::string const& path, std::string const& name) {
        Append(out, maker(soap, path, name, channelInfo(GetChannelId(path))));
    });
}

} // namespace zarn::service::onvif
