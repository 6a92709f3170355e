#pragma once

#include "media_common.h"
#include "media_unserved.h"

#include <soapMediaBindingService.h>

class ZarnAuthenticationEngine;

namespace zarn::service::onvif {

/// The ONVIF Media service (ver10/media/wsdl): one fixed profile per channel, and where its stream and snapshot are.
/// Lives for one request, on that request's context and thread.
class MediaService final : public MediaBindingService {
public:
    /// ssl  whether the host's web server speaks TLS
    MediaService(struct soap* soap, std::shared_ptr<configuration::node::Root> configuration, ChannelInfo channelInfo,
                 bool ssl, ZarnAuthenticationEngine const* engine);

    /// The capabilities of this service, allocated in the context anew; null without memory.
    static trt__Capabilities* MakeServiceCapabilities(struct soap* soap);

    /// Always null: services are made afresh for every request, never cloned.
    MediaBindingService* copy() override;

    // The operations; what they have in common stands at URIBase.

    int GetServiceCapabilities(_trt__GetServiceCapabilities* request,
                               _trt__GetServiceCapabilitiesResponse& response) override;
    int GetVideoSources(_trt__GetVideoSources* request, _trt__GetVideoSourcesResponse& response) override;
    int GetProfile(_trt__GetProfile* request, _trt__GetProfileResponse& response) override;
    int GetProfiles(_trt__GetProfiles* request, _trt__GetProfilesResponse& response) override;
    int GetVideoSourceConfiguration(_trt__GetVideoSourceConfiguration* request,
                                    _trt__GetVideoSourceConfigurationResponse& response) override;
    int GetVideoSourceConfigurations(_trt__GetVideoSourceConfigurations* request,
                                     _trt__GetVideoSourceConfigurationsResponse& response) override;
    int GetVideoSourceConfigurationOptions(_trt__GetVideoSourceConfigurationOptions* request,
                                           _trt__GetVideoSourceConfigurationOptionsResponse& response) override;
    int GetVideoEncoderConfiguration(_trt__GetVideoEncoderConfiguration* request,
                                     _trt__GetVideoEncoderConfigurationResponse& response) override;
    int GetVideoEncoderConfigurations(_trt__GetVideoEncoderConfigurations* request,
                                      _trt__GetVideoEncoderConfigurationsResponse& response) override;
    int GetVideoEncoderConfigurationOptions(_trt__GetVideoEncoderConfigurationOptions* request,
                                            _trt__GetVideoEncoderConfigurationOptionsResponse& response) override;
    int GetStreamUri(_trt__GetStreamUri* request, _trt__GetStreamUriResponse& response) override;
    int GetSnapshotUri(_trt__GetSnapshotUri* request, _trt__GetSnapshotUriResponse& response) override;
    int SetSynchronizationPoint(_trt__SetSynchronizationPoint* request,
                                _trt__SetSynchronizationPointResponse& response) override;

    ZARN_UNSERVED_MEDIA

private:
    template <class Response, class Member, class Maker>
    int Lookup(std::string const& token, Response& response, Member member, Maker maker);

    std::shared_ptr<configuration::node::Root> configuration;
    bool ssl;
    ChannelInfo channelInfo;
    ZarnAuthenticationEngine const* authenticationEngine;
};

} // namespace zarn::service::onvif
