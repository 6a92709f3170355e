#include "media_common.h"

#include <zarn/network/local.h>

#include <algorithm>
#include <locale>
#include <tuple>

namespace zarn::service::onvif {

namespace {

/// No multicast: the schema requires the record, and it says so by an address of no host and port 0.
tt__MulticastConfiguration* MakeNoMulticast(soap* soap) {
    return Filled(soap_new_tt__MulticastConfiguration(soap), [&](tt__MulticastConfiguration& multicast) {
        multicast.Address =
            Filled(soap_new_tt__IPAddress(soap), [](tt__IPAddress& address) { address.Type = tt__IPType__IPv4; });
        multicast.Port = 0;
        multicast.TTL = 0;
        multicast.AutoStart = false;
    });
}

} // namespace

std::string GetChannelId(std::string const& token) { return token.substr(token.rfind('.') + 1); }

std::shared_ptr<configuration::node::Dynamic const> GetChannels(configuration::node::Root const& root) {
    auto const node = root.Find("channels");
    if (!node) throw object::BadCast("unknown", "channels");
    if (!node->Is<configuration::node::Dynamic>()) throw node->BadCastError("unknown");
    return std::static_pointer_cast<configuration::node::Dynamic const>(node);
}

std::string ConvertCodec(std::string const& codec) {
    auto separator = codec.rfind('-');
    if (separator == std::string::npos) separator = codec.rfind('/');
    if (separator == std::string::npos) return {};
    auto encoding = codec.substr(separator + 1);
    std::locale const global;
    for (auto& character : encoding) character = std::toupper(character, global);
    return encoding;
}

std::string GetToken(tr2__GetConfiguration const* request) {
    auto const& asked = OrEmpty(request);
    if (asked.ProfileToken) return *asked.ProfileToken;
    return asked.ConfigurationToken ? *asked.ConfigurationToken : std::string();
}

tt__VideoResolution* MakeResolution(soap* soap, meta::data::VideoInfo const& info) {
    return Filled(soap_new_tt__VideoResolution(soap), [&](tt__VideoResolution& resolution) {
        std::tie(resolution.Width, resolution.Height) = GetSize(info);
    });
}

tt__IntRange* MakeIntRange(soap* soap, int minimum, int maximum) {
    return Filled(soap_new_tt__IntRange(soap), [&](tt__IntRange& range) {
        range.Min = minimum;
        range.Max = maximum;
    });
}

tt__VideoSourceConfiguration* MakeVideoSourceConfiguration(soap* soap, std::string const& token,
                                                           std::string const& name, meta::data::VideoInfo const& info) {
    return Filled(soap_new_tt__VideoSourceConfiguration(soap), [&](tt__VideoSourceConfiguration& configuration) {
        Identify(configuration, token, name);
        configuration.SourceToken = token;
        configuration.Bounds = Filled(soap_new_tt__IntRectangle(soap), [&](tt__IntRectangle& bounds) {
            bounds.x = 0;
            bounds.y = 0;
            std::tie(bounds.width, bounds.height) = GetSize(info);
        });
    });
}

tt__VideoEncoderConfiguration* MakeVideoEncoderConfiguration(soap* soap, std::string const& token,
                                                             std::string const& name,
                                                             meta::data::VideoInfo const& info) {
    return Filled(soap_new_tt__VideoEncoderConfiguration(soap), [&](tt__VideoEncoderConfiguration& configuration) {
        Identify(configuration, token, name);
        // Whatever the channel's codec: ver10 has no word for newer ones, and clients skip encoders they do not know.
        configuration.Encoding = tt__VideoEncoding__H264;
        configuration.Resolution = MakeResolution(soap, info);
        configuration.Quality = 1.0F;
        configuration.Multicast = MakeNoMulticast(soap);
        configuration.SessionTimeout = "PT0S";
    });
}

tt__MetadataConfiguration* MakeMetadataConfiguration(soap* soap, std::string const& token, std::string const& name) {
    return Filled(soap_new_tt__MetadataConfiguration(soap), [&](tt__MetadataConfiguration& configuration) {
        Identify(configuration, token, name);
        configuration.Analytics = &TrueValue;
        configuration.Multicast = MakeNoMulticast(soap);
        configuration.SessionTimeout = "PT0S";
    });
}

tt__Profile* MakeProfile(soap* soap, std::string const& token, std::string const& name,
                         meta::data::VideoInfo const& info) {
    return Filled(soap_new_tt__Profile(soap), [&](tt__Profile& profile) {
        profile.Name = name;
        profile.token = token;
        profile.VideoSourceConfiguration = MakeVideoSourceConfiguration(soap, token, name, info);
        profile.VideoEncoderConfiguration = MakeVideoEncoderConfiguration(soap, token, name, info);
        profile.MetadataConfiguration = MakeMetadataConfiguration(soap, token, name);
    });
}

std::string MakeStreamUri(configuration::node::Root const& root, std::string const& token) {
    auto path = token;
    std::replace(path.begin(), path.end(), '.', '/');
    return network::MakeLocalUrl("rtsp", ReadPort(root, RtspPortPath)) + "/" + path;
}

std::string MakeSnapshotUri(configuration::node::Root const& root, bool ssl, std::string const& token) {
    return network::MakeLocalWebUrl(ssl, ReadPort(root, WebPortPath)) + "/snapshot/" + GetChannelId(token) +
           "/latest.jpeg";
}

} // namespace zarn::service::onvif
