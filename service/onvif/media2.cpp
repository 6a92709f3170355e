#include "media2.h"

#include <algorithm>
#include <array>
#include <tuple>
#include <utility>

namespace zarn::service::onvif {

namespace {

tt__VideoResolution2* MakeResolution2(soap* soap, meta::data::VideoInfo const& info) {
    return Filled(soap_new_tt__VideoResolution2(soap), [&](tt__VideoResolution2& resolution) {
        std::tie(resolution.Width, resolution.Height) = GetSize(info);
    });
}

tt__VideoEncoder2Configuration* MakeVideoEncoder2Configuration(soap* soap, std::string const& token,
                                                               std::string const& name,
                                                               meta::data::VideoInfo const& info) {
    return Filled(soap_new_tt__VideoEncoder2Configuration(soap), [&](tt__VideoEncoder2Configuration& configuration) {
        Identify(configuration, token, name);
        configuration.Encoding = ConvertCodec(info.GetCodec());
        configuration.Resolution = MakeResolution2(soap, info);
        configuration.Quality = 1.0F;
        configuration.RateControl = Filled(soap_new_tt__VideoRateControl2(soap), [](tt__VideoRateControl2& control) {
            control.FrameRateLimit = 15.0F; // one limit for every channel, whatever its frame rate
            control.BitrateLimit = 10000;
        });
    });
}

tt__VideoAnalyticsConfiguration* MakeAnalyticsConfiguration(soap* soap, std::string const& token,
                                                            std::string const& name) {
    // The analytics service reports the engine's modules and rules.
    return Filled(soap_new_tt__VideoAnalyticsConfiguration(soap),
                  [&](auto& configuration) { Identify(configuration, token, name); });
}

/// The maker of a configuration that tells nothing of the video, in the form of the others.
template <auto Make>
auto* WithoutVideo(soap* soap, std::string const& token, std::string const& name, meta::data::VideoInfo const&) {
    return Make(soap, token, name);
}

/// One kind of configuration that a client may ask for in a profile.
struct ConfigurationKind {
    char const* type;
    void (*add)(soap*, tr2__ConfigurationSet&, std::string const& token, std::string const& name,
                meta::data::VideoInfo const&);
};

template <auto Member, auto Make>
void Add(soap* soap, tr2__ConfigurationSet& set, std::string const& token, std::string const& name,
         meta::data::VideoInfo const& info) {
    set.*Member = Make(soap, token, name, info);
}

constexpr std::array ConfigurationKinds{
    ConfigurationKind{"VideoSource", Add<&tr2__ConfigurationSet::VideoSource, MakeVideoSourceConfiguration>},
    ConfigurationKind{"VideoEncoder", Add<&tr2__ConfigurationSet::VideoEncoder, MakeVideoEncoder2Configuration>},
    ConfigurationKind{"Metadata", Add<&tr2__ConfigurationSet::Metadata, WithoutVideo<MakeMetadataConfiguration>>},
    ConfigurationKind{"Analytics", Add<&tr2__ConfigurationSet::Analytics, WithoutVideo<MakeAnalyticsConfiguration>>},
};

/// The configurations of a channel that a list of types asks for; null when the list is empty.
tr2__ConfigurationSet* MakeConfigurationSet(soap* soap, std::vector<std::string> const& types, std::string const& token,
                                            std::string const& name, meta::data::VideoInfo const& info) {
    if (types.empty()) return nullptr;
    bool const all = types.front() == "All"; // further down the list it counts as an unknown name
    return Filled(soap_new_tr2__ConfigurationSet(soap), [&](tr2__ConfigurationSet& set) {
        for (auto const& kind : ConfigurationKinds)
            if (all || std::find(types.begin(), types.end(), kind.type) != types.end())
                kind.add(soap, set, token, name, info);
    });
}

/// The bounds that a video source of the channel can be set to: the whole picture only.
tt__IntRectangleRange* MakeBoundsRange(soap* soap, meta::data::VideoInfo const& info) {
    auto const [width, height] = GetSize(info);
    return Filled(soap_new_tt__IntRectangleRange(soap), [&, width = width, height = height](auto& range) {
        range.XRange = MakeIntRange(soap, 0, width);
        range.YRange = MakeIntRange(soap, 0, height);
        range.WidthRange = MakeIntRange(soap, width, width);
        range.HeightRange = MakeIntRange(soap, height, height);
    });
}

/// The bounds when no channel is named: anything.
tt__IntRectangleRange* MakeAnyBoundsRange(soap* soap) {
    return Filled(soap_new_tt__IntRectangleRange(soap), [&](tt__IntRectangleRange& range) {
        auto* const any = MakeIntRange(soap, 0, 9999);
        range.XRange = range.YRange = range.WidthRange = range.HeightRange = any;
    });
}

tr2__StreamingCapabilities* MakeMedia2StreamingCapabilities(soap* soap) {
    return Filled(soap_new_tr2__StreamingCapabilities(soap), [](tr2__StreamingCapabilities& streaming) {
        streaming.RTSPStreaming = &TrueValue;
        streaming.RTPMulticast = &FalseValue;
        streaming.RTP_USCORERTSP_USCORETCP = &TrueValue;
        streaming.NonAggregateControl = &FalseValue;
        streaming.AutoStartMulticast = &FalseValue;
        streaming.SecureRTSPStreaming = &FalseValue;
    });
}

} // namespace

tr2__Capabilities2* Media2Service::MakeServiceCapabilities(struct soap* soap) {
    return Filled(soap_new_tr2__Capabilities2(soap), [&](tr2__Capabilities2& capabilities) {
        capabilities.ProfileCapabilities =
            Filled(soap_new_tr2__ProfileCapabilities(soap), [&](tr2__ProfileCapabilities& profiles) {
                profiles.MaximumNumberOfProfiles = &IntMax;
                profiles.ConfigurationsSupported = Filled(soap_new_std__string(soap), [](std::string& types) {
                    types = "VideoSource VideoEncoder Metadata Analytics";
                });
            });
        capabilities.StreamingCapabilities = MakeMedia2StreamingCapabilities(soap);
        capabilities.SnapshotUri = &TrueValue;
    });
}

int Media2Service::GetServiceCapabilities(_tr2__GetServiceCapabilities*,
                                          _tr2__GetServiceCapabilitiesResponse& response) {
    response.Capabilities = MakeServiceCapabilities(soap);
    return SOAP_OK;
}

int Media2Service::GetProfiles(_tr2__GetProfiles* request, _tr2__GetProfilesResponse& response) {
    auto const& asked = OrEmpty(request);
    auto const makeProfile = [&](struct soap* soap, std::string const& token, std::string const& name,
                                 meta::data::VideoInfo const& info) {
        return Filled(soap_new_tr2__MediaProfile(soap), [&](tr2__MediaProfile& profile) {
            profile.Name = name;
            profile.token = token;
            profile.fixed = &TrueValue;
            profile.Configurations = MakeConfigurationSet(soap, asked.Type, token, name, info);
        });
    };
    PopulatePerChannel(soap, response.Profiles, makeProfile, channelInfo, configuration,
                       asked.Token ? *asked.Token : std::string());
    return SOAP_OK;
}

// The list operations list every channel, whatever tokens the request carries.

int Media2Service::GetVideoSourceConfigurations(tr2__GetConfiguration*,
                                                _tr2__GetVideoSourceConfigurationsResponse& response) {
    PopulatePerChannel(soap, response.Configurations, MakeVideoSourceConfiguration, channelInfo, configuration, "");
    return SOAP_OK;
}

int Media2Service::GetVideoEncoderConfigurations(tr2__GetConfiguration*,
                                                 _tr2__GetVideoEncoderConfigurationsResponse& response) {
    PopulatePerChannel(soap, response.Configurations, MakeVideoEncoder2Configuration, channelInfo, configuration, "");
    return SOAP_OK;
}

int Media2Service::GetMetadataConfigurations(tr2__GetConfiguration*,
                                             _tr2__GetMetadataConfigurationsResponse& response) {
    PopulatePerChannel(soap, response.Configurations, WithoutVideo<MakeMetadataConfiguration>, channelInfo,
                       configuration, "");
    return SOAP_OK;
}

int Media2Service::GetAnalyticsConfigurations(tr2__GetConfiguration*,
                                              _tr2__GetAnalyticsConfigurationsResponse& response) {
    PopulatePerChannel(soap, response.Configurations, WithoutVideo<MakeAnalyticsConfiguration>, channelInfo,
                       configuration, "");
    return SOAP_OK;
}

int Media2Service::GetVideoSourceConfigurationOptions(tr2__GetConfiguration* request,
                                                      _tr2__GetVideoSourceConfigurationOptionsResponse& response) {
    auto const fill = [&](tt__VideoSourceConfigurationOptions& options) {
        // Any token will do: the channel's description is what counts, and an unknown channel has an empty one.
        if (auto const token = GetToken(request); !token.empty()) {
            options.BoundsRange = MakeBoundsRange(soap, channelInfo(GetChannelId(token)));
            options.VideoSourceTokensAvailable.push_back(token);
            return;
        }
        options.BoundsRange = MakeAnyBoundsRange(soap);
        VisitChannels(*configuration, "", [&](std::string const& path, std::string const&) {
            options.VideoSourceTokensAvailable.push_back(path);
        });
    };
    response.Options = Filled(soap_new_tt__VideoSourceConfigurationOptions(soap), fill);
    return SOAP_OK;
}

int Media2Service::GetVideoEncoderConfigurationOptions(tr2__GetConfiguration* request,
                                                       _tr2__GetVideoEncoderConfigurationOptionsResponse& response) {
    auto const token = GetToken(request);
    if (token.empty()) return SOAP_OK;
    auto const info = channelInfo(GetChannelId(token));
    auto const fill = [&](tt__VideoEncoder2ConfigurationOptions& options) {
        options.Encoding = ConvertCodec(info.GetCodec());
        options.QualityRange = Filled(soap_new_tt__FloatRange(soap), [](tt__FloatRange& range) {
            range.Min = 1.0F;
            range.Max = 1.0F;
        });
        Append(options.ResolutionsAvailable, MakeResolution2(soap, info));
        options.BitrateRange = MakeIntRange(soap, 1000, 10000);
    };
    Append(response.Options, Filled(soap_new_tt__VideoEncoder2ConfigurationOptions(soap), fill));
    return SOAP_OK;
}

int Media2Service::GetMetadataConfigurationOptions(tr2__GetConfiguration*,
                                                   _tr2__GetMetadataConfigurationOptionsResponse& response) {
    response.Options =
        Filled(soap_new_tt__MetadataConfigurationOptions(soap), [&](tt__MetadataConfigurationOptions& options) {
            options.PTZStatusFilterOptions =
                Filled(soap_new_tt__PTZStatusFilterOptions(soap), [](tt__PTZStatusFilterOptions& filter) {
                    filter.PanTiltStatusSupported = false;
                    filter.ZoomStatusSupported = false;
                });
        });
    return SOAP_OK;
}

int Media2Service::GetStreamUri(Authenticated, _tr2__GetStreamUri* request, _tr2__GetStreamUriResponse& response) {
    response.Uri = MakeStreamUri(*configuration, OrEmpty(request).ProfileToken);
    return SOAP_OK;
}

int Media2Service::GetSnapshotUri(Authenticated, _tr2__GetSnapshotUri* request,
                                  _tr2__GetSnapshotUriResponse& response) {
    response.Uri = MakeSnapshotUri(*configuration, ssl, OrEmpty(request).ProfileToken);
    return SOAP_OK;
}

} // namespace zarn::service::onvif
