#include "media.h"

#include <algorithm>
#include <utility>

namespace zarn::service::onvif {

namespace {

/// The frame rate that is reported at most, in frames per second.
constexpr int MaximumFrameRate = 15;

/// Whole frames per second, at most 15; 0 when the denominator is 0.
float GetFrameRate(meta::data::VideoInfo const& info) {
    auto const denominator = info.GetFrameRateDenominator();
    if (denominator == 0) return 0;
    // In 64 bits, where the quotient of the smallest number and -1 exists.
    auto const rate = std::int64_t{info.GetFrameRateNumerator()} / denominator;
    return static_cast<float>(std::min<std::int64_t>(rate, MaximumFrameRate));
}

tt__MediaUri* MakeMediaUri(soap* soap, std::string const& uri) {
    return Filled(soap_new_tt__MediaUri(soap), [&](tt__MediaUri& mediaUri) {
        mediaUri.Uri = uri;
        mediaUri.InvalidAfterConnect = false;
        mediaUri.InvalidAfterReboot = false;
        mediaUri.Timeout = "PT0S";
    });
}

/// The options of every encoder: one quality.
tt__VideoEncoderConfigurationOptions* MakeVideoEncoderOptions(soap* soap) {
    return Filled(soap_new_tt__VideoEncoderConfigurationOptions(soap),
                  [&](tt__VideoEncoderConfigurationOptions& out) { out.QualityRange = MakeIntRange(soap, 1, 1); });
}

tt__H264Options* MakeH264Options(soap* soap, meta::data::VideoInfo const& info) {
    return Filled(soap_new_tt__H264Options(soap),
                  [&](tt__H264Options& options) { Append(options.ResolutionsAvailable, MakeResolution(soap, info)); });
}

trt__StreamingCapabilities* MakeStreamingCapabilities(soap* soap) {
    return Filled(soap_new_trt__StreamingCapabilities(soap), [](trt__StreamingCapabilities& streaming) {
        streaming.RTPMulticast = &FalseValue;
        streaming.RTP_USCORETCP = &FalseValue;
        streaming.RTP_USCORERTSP_USCORETCP = &TrueValue;
        streaming.NonAggregateControl = &FalseValue;
        streaming.NoRTSPStreaming = &FalseValue;
    });
}

} // namespace

trt__Capabilities* MediaService::MakeServiceCapabilities(struct soap* soap) {
    return Filled(soap_new_trt__Capabilities(soap), [&](trt__Capabilities& capabilities) {
        capabilities.ProfileCapabilities =
            Filled(soap_new_trt__ProfileCapabilities(soap),
                   [](trt__ProfileCapabilities& profiles) { profiles.MaximumNumberOfProfiles = &IntMax; });
        capabilities.StreamingCapabilities = MakeStreamingCapabilities(soap);
        capabilities.SnapshotUri = &TrueValue;
    });
}

int MediaService::GetServiceCapabilities(_trt__GetServiceCapabilities*,
                                         _trt__GetServiceCapabilitiesResponse& response) {
    response.Capabilities = MakeServiceCapabilities(soap);
    return SOAP_OK;
}

int MediaService::GetVideoSources(Authenticated, _trt__GetVideoSources*, _trt__GetVideoSourcesResponse& response) {
    // Without the configuration's lock: the entries are a snapshot, and nothing else of them is read.
    auto const channels = GetChannels(*configuration);
    for (auto const& entry : *channels) {
        auto const token = entry->GetPath();
        auto const info = channelInfo(GetChannelId(token));
        Append(response.VideoSources, Filled(soap_new_tt__VideoSource(soap), [&](tt__VideoSource& source) {
                   source.token = token;
                   source.Framerate = GetFrameRate(info);
                   source.Resolution = MakeResolution(soap, info);
               }));
    }
    return SOAP_OK;
}

int MediaService::GetProfiles(_trt__GetProfiles*, _trt__GetProfilesResponse& response) {
    PopulatePerChannel(soap, response.Profiles, MakeProfile, channelInfo, configuration, "");
    return SOAP_OK;
}

int MediaService::GetVideoSourceConfigurations(_trt__GetVideoSourceConfigurations*,
                                               _trt__GetVideoSourceConfigurationsResponse& response) {
    PopulatePerChannel(soap, response.Configurations, MakeVideoSourceConfiguration, channelInfo, configuration, "");
    return SOAP_OK;
}

int MediaService::GetVideoEncoderConfigurations(_trt__GetVideoEncoderConfigurations*,
                                                _trt__GetVideoEncoderConfigurationsResponse& response) {
    PopulatePerChannel(soap, response.Configurations, MakeVideoEncoderConfiguration, channelInfo, configuration, "");
    return SOAP_OK;
}

/// Answers with what `maker` makes of the map node that the token names, which may lie anywhere in the configuration.
template <class Response, class Member, class Maker>
int MediaService::Lookup(std::string const& token, Response& response, Member member, Maker maker) {
    auto const node = configuration->Find(token);
    // The configuration getters, too, say that it is a profile which was not found.
    if (!node) return SoapFault(soap, FaultCode::Sender, "Profile not found", "ter:InvalidArgVal", "ter:NoProfile");
    auto const name = ReadName(node->As<configuration::node::Map>());
    response.*member = maker(soap, token, name, channelInfo(GetChannelId(token)));
    return SOAP_OK;
}

int MediaService::GetProfile(_trt__GetProfile* request, _trt__GetProfileResponse& response) {
    return Lookup(OrEmpty(request).ProfileToken, response, &_trt__GetProfileResponse::Profile, MakeProfile);
}

int MediaService::GetVideoSourceConfiguration(_trt__GetVideoSourceConfiguration* request,
                                              _trt__GetVideoSourceConfigurationResponse& response) {
    return Lookup(OrEmpty(request).ConfigurationToken, response,
                  &_trt__GetVideoSourceConfigurationResponse::Configuration, MakeVideoSourceConfiguration);
}

int MediaService::GetVideoEncoderConfiguration(_trt__GetVideoEncoderConfiguration* request,
                                               _trt__GetVideoEncoderConfigurationResponse& response) {
    return Lookup(OrEmpty(request).ConfigurationToken, response,
                  &_trt__GetVideoEncoderConfigurationResponse::Configuration, MakeVideoEncoderConfiguration);
}

int MediaService::GetVideoEncoderConfigurationOptions(_trt__GetVideoEncoderConfigurationOptions* request,
                                                      _trt__GetVideoEncoderConfigurationOptionsResponse& response) {
    response.Options = MakeVideoEncoderOptions(soap);
    auto const* token = OrEmpty(request).ConfigurationToken;
    if (!response.Options || !token) return SOAP_OK;
    // Any token will do: the channel's description is what counts, and an unknown channel has an empty one.
    response.Options->H264 = MakeH264Options(soap, channelInfo(GetChannelId(*token)));
    return SOAP_OK;
}

int MediaService::GetStreamUri(Authenticated, _trt__GetStreamUri* request, _trt__GetStreamUriResponse& response) {
    response.MediaUri = MakeMediaUri(soap, MakeStreamUri(*configuration, OrEmpty(request).ProfileToken));
    return SOAP_OK;
}

int MediaService::GetSnapshotUri(Authenticated, _trt__GetSnapshotUri* request, _trt__GetSnapshotUriResponse& response) {
    response.MediaUri = MakeMediaUri(soap, MakeSnapshotUri(*configuration, ssl, OrEmpty(request).ProfileToken));
    return SOAP_OK;
}
} // namespace zarn::service::onvif
