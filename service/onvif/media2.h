#pragma once

#include "media2_unserved.h"
#include "media_common.h"

#include <soapMedia2BindingService.h>

class ZarnAuthenticationEngine;

namespace zarn::service::onvif {

/// The ONVIF Media2 service (ver20/media/wsdl): one fixed profile per channel, whose configurations are told on demand.
/// Lives for one request, on that request's context and thread.
class Media2Service final : public Media2BindingService {
public:
    /// ssl  whether the host's web server speaks TLS
    Media2Service(struct soap* soap, std::shared_ptr<configuration::node::Root> configuration, ChannelInfo channelInfo,
                  bool ssl, ZarnAuthenticationEngine const* engine);

    /// The capabilities of this service, allocated in the context anew; null without memory.
    static tr2__Capabilities2* MakeServiceCapabilities(struct soap* soap);

    /// Always null: services are made afresh for every request, never cloned.
    Media2BindingService* copy() override;

    // The operations; what they have in common stands at URIBase.

    int GetServiceCapabilities(_tr2__GetServiceCapabilities* request,
                               _tr2__GetServiceCapabilitiesResponse& response) override;
    int GetProfiles(_tr2__GetProfiles* request, _tr2__GetProfilesResponse& response) override;
    int GetVideoSourceConfigurations(tr2__GetConfiguration* request,
                                     _tr2__GetVideoSourceConfigurationsResponse& response) override;
    int GetVideoEncoderConfigurations(tr2__GetConfiguration* request,
                                      _tr2__GetVideoEncoderConfigurationsResponse& response) override;
    int GetMetadataConfigurations(tr2__GetConfiguration* request,
                                  _tr2__GetMetadataConfigurationsResponse& response) override;
    int GetAnalyticsConfigurations(tr2__GetConfiguration* request,
                                   _tr2__GetAnalyticsConfigurationsResponse& response) override;
    int GetVideoSourceConfigurationOptions(tr2__GetConfiguration* request,
                                           _tr2__GetVideoSourceConfigurationOptionsResponse& response) override;
    int GetVideoEncoderConfigurationOptions(tr2__GetConfiguration* request,
                                            _tr2__GetVideoEncoderConfigurationOptionsResponse& response) override;
    int GetMetadataConfigurationOptions(tr2__GetConfiguration* request,
                                        _tr2__GetMetadataConfigurationOptionsResponse& response) override;
    int SetMetadataConfiguration(_tr2__SetMetadataConfiguration* request,
                                 tr2__SetConfigurationResponse& response) override;
    int SetVideoEncoderConfiguration(_tr2__SetVideoEncoderConfiguration* request,
                                     tr2__SetConfigurationResponse& response) override;
    int SetSynchronizationPoint(_tr2__SetSynchronizationPoint* request,
                                _tr2__SetSynchronizationPointResponse& response) override;
    int GetStreamUri(_tr2__GetStreamUri* request, _tr2__GetStreamUriResponse& response) override;
    int GetSnapshotUri(_tr2__GetSnapshotUri* request, _tr2__GetSnapshotUriResponse& response) override;

    ZARN_UNSERVED_MEDIA2

private:
    std::shared_ptr<configuration::node::Root> configuration;
    bool ssl;
    ChannelInfo channelInfo;
    ZarnAuthenticationEngine const* authenticationEngine;
};

} // namespace zarn::service::onvif
