// The media service, ver10 (trt).
// Source: ONVIF Media Service Specification, media.wsdl.

#import "schema.h"

//gsoap trt schema namespace:     http://www.onvif.org/ver10/media/wsdl
//gsoap trt schema elementForm:   qualified
//gsoap trt schema attributeForm: unqualified

//gsoap trt service name:      MediaBinding
//gsoap trt service type:      Media
//gsoap trt service namespace: http://www.onvif.org/ver10/media/wsdl
//gsoap trt service transport: http://schemas.xmlsoap.org/soap/http

// Capabilities

class trt__ProfileCapabilities
{ public:
    std::vector<xsd__anyType> __any                   0;
    @ int*                    MaximumNumberOfProfiles 0;
    @ xsd__anyAttribute       __anyAttribute;
};

class trt__StreamingCapabilities
{ public:
    std::vector<xsd__anyType> __any                    0;
    @ bool*                   RTPMulticast             0;
    @ bool*                   RTP_USCORETCP            0;
    @ bool*                   RTP_USCORERTSP_USCORETCP 0;
    @ bool*                   NonAggregateControl      0;
    @ bool*                   NoRTSPStreaming          0;
    @ xsd__anyAttribute       __anyAttribute;
};

class trt__Capabilities
{ public:
    trt__ProfileCapabilities*   ProfileCapabilities   1;
    trt__StreamingCapabilities* StreamingCapabilities 1;
    std::vector<xsd__anyType>   __any                 0;
    @ bool*                     SnapshotUri           0;
    @ bool*                     Rotation              0;
    @ bool*                     VideoSourceMode       0;
    @ bool*                     OSD                   0;
    @ bool*                     TemporaryOSDText      0;
    @ bool*                     EXICompression        0;
    @ xsd__anyAttribute         __anyAttribute;
};

// Messages of the served operations

class _trt__GetServiceCapabilities
{ public:
};

class _trt__GetServiceCapabilitiesResponse
{ public:
    trt__Capabilities* Capabilities 1;
};

class _trt__GetProfiles
{ public:
};

class _trt__GetProfilesResponse
{ public:
    std::vector<tt__Profile*> Profiles 0;
};

class _trt__GetProfile
{ public:
    tt__ReferenceToken ProfileToken 1;
};

class _trt__GetProfileResponse
{ public:
    tt__Profile* Profile 1;
};

class _trt__GetVideoSources
{ public:
};

class _trt__GetVideoSourcesResponse
{ public:
    std::vector<tt__VideoSource*> VideoSources 0;
};

class _trt__GetVideoSourceConfigurations
{ public:
};

class _trt__GetVideoSourceConfigurationsResponse
{ public:
    std::vector<tt__VideoSourceConfiguration*> Configurations 0;
};

class _trt__GetVideoSourceConfiguration
{ public:
    tt__ReferenceToken ConfigurationToken 1;
};

class _trt__GetVideoSourceConfigurationResponse
{ public:
    tt__VideoSourceConfiguration* Configuration 1;
};

class _trt__GetVideoSourceConfigurationOptions
{ public:
    tt__ReferenceToken* ConfigurationToken 0;
    tt__ReferenceToken* ProfileToken       0;
};

/// Options: required by the schema, left out because there is nothing to choose from.
class _trt__GetVideoSourceConfigurationOptionsResponse
{ public:
    tt__VideoSourceConfigurationOptions* Options 0;
};

class _trt__GetVideoEncoderConfigurations
{ public:
};

class _trt__GetVideoEncoderConfigurationsResponse
{ public:
    std::vector<tt__VideoEncoderConfiguration*> Configurations 0;
};

class _trt__GetVideoEncoderConfiguration
{ public:
    tt__ReferenceToken ConfigurationToken 1;
};

class _trt__GetVideoEncoderConfigurationResponse
{ public:
    tt__VideoEncoderConfiguration* Configuration 1;
};

class _trt__GetVideoEncoderConfigurationOptions
{ public:
    tt__ReferenceToken* ConfigurationToken 0;
    tt__ReferenceToken* ProfileToken       0;
};

class _trt__GetVideoEncoderConfigurationOptionsResponse
{ public:
    tt__VideoEncoderConfigurationOptions* Options 1;
};

class _trt__GetStreamUri
{ public:
    tt__StreamSetup*   StreamSetup  1;
    tt__ReferenceToken ProfileToken 1;
};

class _trt__GetStreamUriResponse
{ public:
    tt__MediaUri* MediaUri 1;
};

class _trt__GetSnapshotUri
{ public:
    tt__ReferenceToken ProfileToken 1;
};

class _trt__GetSnapshotUriResponse
{ public:
    tt__MediaUri* MediaUri 1;
};

class _trt__SetSynchronizationPoint
{ public:
    tt__ReferenceToken ProfileToken 1;
};

class _trt__SetSynchronizationPointResponse
{ public:
};

// Messages of the operations that are not served

typedef tt__UnservedMessage _trt__AddAudioDecoderConfiguration, _trt__AddAudioDecoderConfigurationResponse,
    _trt__AddAudioEncoderConfiguration, _trt__AddAudioEncoderConfigurationResponse,
    _trt__AddAudioOutputConfiguration, _trt__AddAudioOutputConfigurationResponse, _trt__AddAudioSourceConfiguration,
    _trt__AddAudioSourceConfigurationResponse, _trt__AddMetadataConfiguration,
    _trt__AddMetadataConfigurationResponse, _trt__AddPTZConfiguration, _trt__AddPTZConfigurationResponse,
    _trt__AddVideoAnalyticsConfiguration, _trt__AddVideoAnalyticsConfigurationResponse,
    _trt__AddVideoEncoderConfiguration, _trt__AddVideoEncoderConfigurationResponse,
    _trt__AddVideoSourceConfiguration, _trt__AddVideoSourceConfigurationResponse, _trt__CreateOSD,
    _trt__CreateOSDResponse, _trt__CreateProfile, _trt__CreateProfileResponse, _trt__DeleteOSD,
    _trt__DeleteOSDResponse, _trt__DeleteProfile, _trt__DeleteProfileResponse, _trt__GetAudioDecoderConfiguration,
    _trt__GetAudioDecoderConfigurationResponse, _trt__GetAudioDecoderConfigurationOptions,
    _trt__GetAudioDecoderConfigurationOptionsResponse, _trt__GetAudioDecoderConfigurations,
    _trt__GetAudioDecoderConfigurationsResponse, _trt__GetAudioEncoderConfiguration,
    _trt__GetAudioEncoderConfigurationResponse, _trt__GetAudioEncoderConfigurationOptions,
    _trt__GetAudioEncoderConfigurationOptionsResponse, _trt__GetAudioEncoderConfigurations,
    _trt__GetAudioEncoderConfigurationsResponse, _trt__GetAudioOutputConfiguration,
    _trt__GetAudioOutputConfigurationResponse, _trt__GetAudioOutputConfigurationOptions,
    _trt__GetAudioOutputConfigurationOptionsResponse, _trt__GetAudioOutputConfigurations,
    _trt__GetAudioOutputConfigurationsResponse, _trt__GetAudioOutputs, _trt__GetAudioOutputsResponse,
    _trt__GetAudioSourceConfiguration, _trt__GetAudioSourceConfigurationResponse,
    _trt__GetAudioSourceConfigurationOptions, _trt__GetAudioSourceConfigurationOptionsResponse,
    _trt__GetAudioSourceConfigurations, _trt__GetAudioSourceConfigurationsResponse, _trt__GetAudioSources,
    _trt__GetAudioSourcesResponse, _trt__GetCompatibleAudioDecoderConfigurations,
    _trt__GetCompatibleAudioDecoderConfigurationsResponse, _trt__GetCompatibleAudioEncoderConfigurations,
    _trt__GetCompatibleAudioEncoderConfigurationsResponse, _trt__GetCompatibleAudioOutputConfigurations,
    _trt__GetCompatibleAudioOutputConfigurationsResponse, _trt__GetCompatibleAudioSourceConfigurations,
    _trt__GetCompatibleAudioSourceConfigurationsResponse, _trt__GetCompatibleMetadataConfigurations,
    _trt__GetCompatibleMetadataConfigurationsResponse, _trt__GetCompatibleVideoAnalyticsConfigurations,
    _trt__GetCompatibleVideoAnalyticsConfigurationsResponse, _trt__GetCompatibleVideoEncoderConfigurations,
    _trt__GetCompatibleVideoEncoderConfigurationsResponse, _trt__GetCompatibleVideoSourceConfigurations,
    _trt__GetCompatibleVideoSourceConfigurationsResponse, _trt__GetGuaranteedNumberOfVideoEncoderInstances,
    _trt__GetGuaranteedNumberOfVideoEncoderInstancesResponse, _trt__GetMetadataConfiguration,
    _trt__GetMetadataConfigurationResponse, _trt__GetMetadataConfigurationOptions,
    _trt__GetMetadataConfigurationOptionsResponse, _trt__GetMetadataConfigurations,
    _trt__GetMetadataConfigurationsResponse, _trt__GetOSD, _trt__GetOSDResponse, _trt__GetOSDOptions,
    _trt__GetOSDOptionsResponse, _trt__GetOSDs, _trt__GetOSDsResponse, _trt__GetVideoAnalyticsConfiguration,
    _trt__GetVideoAnalyticsConfigurationResponse, _trt__GetVideoAnalyticsConfigurations,
    _trt__GetVideoAnalyticsConfigurationsResponse, _trt__GetVideoSourceModes, _trt__GetVideoSourceModesResponse,
    _trt__RemoveAudioDecoderConfiguration, _trt__RemoveAudioDecoderConfigurationResponse,
    _trt__RemoveAudioEncoderConfiguration, _trt__RemoveAudioEncoderConfigurationResponse,
    _trt__RemoveAudioOutputConfiguration, _trt__RemoveAudioOutputConfigurationResponse,
    _trt__RemoveAudioSourceConfiguration, _trt__RemoveAudioSourceConfigurationResponse,
    _trt__RemoveMetadataConfiguration, _trt__RemoveMetadataConfigurationResponse, _trt__RemovePTZConfiguration,
    _trt__RemovePTZConfigurationResponse, _trt__RemoveVideoAnalyticsConfiguration,
    _trt__RemoveVideoAnalyticsConfigurationResponse, _trt__RemoveVideoEncoderConfiguration,
    _trt__RemoveVideoEncoderConfigurationResponse, _trt__RemoveVideoSourceConfiguration,
    _trt__RemoveVideoSourceConfigurationResponse, _trt__SetAudioDecoderConfiguration,
    _trt__SetAudioDecoderConfigurationResponse, _trt__SetAudioEncoderConfiguration,
    _trt__SetAudioEncoderConfigurationResponse, _trt__SetAudioOutputConfiguration,
    _trt__SetAudioOutputConfigurationResponse, _trt__SetAudioSourceConfiguration,
    _trt__SetAudioSourceConfigurationResponse, _trt__SetMetadataConfiguration,
    _trt__SetMetadataConfigurationResponse, _trt__SetOSD, _trt__SetOSDResponse,
    _trt__SetVideoAnalyticsConfiguration, _trt__SetVideoAnalyticsConfigurationResponse,
    _trt__SetVideoEncoderConfiguration, _trt__SetVideoEncoderConfigurationResponse,
    _trt__SetVideoSourceConfiguration, _trt__SetVideoSourceConfigurationResponse, _trt__SetVideoSourceMode,
    _trt__SetVideoSourceModeResponse, _trt__StartMulticastStreaming, _trt__StartMulticastStreamingResponse,
    _trt__StopMulticastStreaming, _trt__StopMulticastStreamingResponse;

// Served operations

//gsoap trt service method-input-action: GetServiceCapabilities http://www.onvif.org/ver10/media/wsdl/GetServiceCapabilities
int __trt__GetServiceCapabilities(_trt__GetServiceCapabilities* trt__GetServiceCapabilities,
    _trt__GetServiceCapabilitiesResponse& trt__GetServiceCapabilitiesResponse);
//gsoap trt service method-input-action: GetProfiles http://www.onvif.org/ver10/media/wsdl/GetProfiles
int __trt__GetProfiles(_trt__GetProfiles* trt__GetProfiles, _trt__GetProfilesResponse& trt__GetProfilesResponse);
//gsoap trt service method-input-action: GetVideoSourceConfigurations http://www.onvif.org/ver10/media/wsdl/GetVideoSourceConfigurations
int __trt__GetVideoSourceConfigurations(_trt__GetVideoSourceConfigurations* trt__GetVideoSourceConfigurations,
    _trt__GetVideoSourceConfigurationsResponse& trt__GetVideoSourceConfigurationsResponse);
//gsoap trt service method-input-action: GetVideoEncoderConfigurations http://www.onvif.org/ver10/media/wsdl/GetVideoEncoderConfigurations
int __trt__GetVideoEncoderConfigurations(_trt__GetVideoEncoderConfigurations* trt__GetVideoEncoderConfigurations,
    _trt__GetVideoEncoderConfigurationsResponse& trt__GetVideoEncoderConfigurationsResponse);
//gsoap trt service method-input-action: GetProfile http://www.onvif.org/ver10/media/wsdlGetProfile/
int __trt__GetProfile(_trt__GetProfile* trt__GetProfile, _trt__GetProfileResponse& trt__GetProfileResponse);
//gsoap trt service method-input-action: GetVideoSourceConfiguration http://www.onvif.org/ver10/media/wsdl/GetVideoSourceConfiguration
int __trt__GetVideoSourceConfiguration(_trt__GetVideoSourceConfiguration* trt__GetVideoSourceConfiguration,
    _trt__GetVideoSourceConfigurationResponse& trt__GetVideoSourceConfigurationResponse);
//gsoap trt service method-input-action: GetVideoEncoderConfiguration http://www.onvif.org/ver10/media/wsdl/GetVideoEncoderConfiguration
int __trt__GetVideoEncoderConfiguration(_trt__GetVideoEncoderConfiguration* trt__GetVideoEncoderConfiguration,
    _trt__GetVideoEncoderConfigurationResponse& trt__GetVideoEncoderConfigurationResponse);
//gsoap trt service method-input-action: GetVideoSources http://www.onvif.org/ver10/media/wsdlGetVideoSources/
int __trt__GetVideoSources(_trt__GetVideoSources* trt__GetVideoSources,
    _trt__GetVideoSourcesResponse& trt__GetVideoSourcesResponse);
//gsoap trt service method-input-action: GetVideoEncoderConfigurationOptions http://www.onvif.org/ver10/media/wsdl/GetVideoEncoderConfigurationOptions
int __trt__GetVideoEncoderConfigurationOptions(_trt__GetVideoEncoderConfigurationOptions* trt__GetVideoEncoderConfigurationOptions,
    _trt__GetVideoEncoderConfigurationOptionsResponse& trt__GetVideoEncoderConfigurationOptionsResponse);
//gsoap trt service method-input-action: GetStreamUri http://www.onvif.org/ver10/media/wsdl/GetStreamUri
int __trt__GetStreamUri(_trt__GetStreamUri* trt__GetStreamUri, _trt__GetStreamUriResponse& trt__GetStreamUriResponse);
//gsoap trt service method-input-action: GetSnapshotUri http://www.onvif.org/ver10/media/wsdl/GetSnapshotUri
int __trt__GetSnapshotUri(_trt__GetSnapshotUri* trt__GetSnapshotUri,
    _trt__GetSnapshotUriResponse& trt__GetSnapshotUriResponse);
//gsoap trt service method-input-action: SetSynchronizationPoint http://www.onvif.org/ver10/media/wsdl/SetSynchronizationPoint
int __trt__SetSynchronizationPoint(_trt__SetSynchronizationPoint* trt__SetSynchronizationPoint,
    _trt__SetSynchronizationPointResponse& trt__SetSynchronizationPointResponse);
//gsoap trt service method-input-action: GetVideoSourceConfigurationOptions http://www.onvif.org/ver10/media/wsdlGetVideoSourceConfigurationOptions/
int __trt__GetVideoSourceConfigurationOptions(_trt__GetVideoSourceConfigurationOptions* trt__GetVideoSourceConfigurationOptions,
    _trt__GetVideoSourceConfigurationOptionsResponse& trt__GetVideoSourceConfigurationOptionsResponse);

// Operations that are not served

//gsoap trt service method-input-action: AddAudioDecoderConfiguration http://www.onvif.org/ver10/media/wsdl/AddAudioDecoderConfiguration
int __trt__AddAudioDecoderConfiguration(_trt__AddAudioDecoderConfiguration* trt__AddAudioDecoderConfiguration,
    _trt__AddAudioDecoderConfigurationResponse& trt__AddAudioDecoderConfigurationResponse);
//gsoap trt service method-input-action: AddAudioEncoderConfiguration http://www.onvif.org/ver10/media/wsdl/AddAudioEncoderConfiguration
int __trt__AddAudioEncoderConfiguration(_trt__AddAudioEncoderConfiguration* trt__AddAudioEncoderConfiguration,
    _trt__AddAudioEncoderConfigurationResponse& trt__AddAudioEncoderConfigurationResponse);
//gsoap trt service method-input-action: AddAudioOutputConfiguration http://www.onvif.org/ver10/media/wsdl/AddAudioOutputConfiguration
int __trt__AddAudioOutputConfiguration(_trt__AddAudioOutputConfiguration* trt__AddAudioOutputConfiguration,
    _trt__AddAudioOutputConfigurationResponse& trt__AddAudioOutputConfigurationResponse);
//gsoap trt service method-input-action: AddAudioSourceConfiguration http://www.onvif.org/ver10/media/wsdl/AddAudioSourceConfiguration
int __trt__AddAudioSourceConfiguration(_trt__AddAudioSourceConfiguration* trt__AddAudioSourceConfiguration,
    _trt__AddAudioSourceConfigurationResponse& trt__AddAudioSourceConfigurationResponse);
//gsoap trt service method-input-action: AddMetadataConfiguration http://www.onvif.org/ver10/media/wsdl/AddMetadataConfiguration
int __trt__AddMetadataConfiguration(_trt__AddMetadataConfiguration* trt__AddMetadataConfiguration,
    _trt__AddMetadataConfigurationResponse& trt__AddMetadataConfigurationResponse);
//gsoap trt service method-input-action: AddPTZConfiguration http://www.onvif.org/ver10/media/wsdl/AddPTZConfiguration
int __trt__AddPTZConfiguration(_trt__AddPTZConfiguration* trt__AddPTZConfiguration,
    _trt__AddPTZConfigurationResponse& trt__AddPTZConfigurationResponse);
//gsoap trt service method-input-action: AddVideoAnalyticsConfiguration http://www.onvif.org/ver10/media/wsdl/AddVideoAnalyticsConfiguration
int __trt__AddVideoAnalyticsConfiguration(_trt__AddVideoAnalyticsConfiguration* trt__AddVideoAnalyticsConfiguration,
    _trt__AddVideoAnalyticsConfigurationResponse& trt__AddVideoAnalyticsConfigurationResponse);
//gsoap trt service method-input-action: AddVideoEncoderConfiguration http://www.onvif.org/ver10/media/wsdl/AddVideoEncoderConfiguration
int __trt__AddVideoEncoderConfiguration(_trt__AddVideoEncoderConfiguration* trt__AddVideoEncoderConfiguration,
    _trt__AddVideoEncoderConfigurationResponse& trt__AddVideoEncoderConfigurationResponse);
//gsoap trt service method-input-action: AddVideoSourceConfiguration http://www.onvif.org/ver10/media/wsdl/AddVideoSourceConfiguration
int __trt__AddVideoSourceConfiguration(_trt__AddVideoSourceConfiguration* trt__AddVideoSourceConfiguration,
    _trt__AddVideoSourceConfigurationResponse& trt__AddVideoSourceConfigurationResponse);
//gsoap trt service method-input-action: CreateOSD http://www.onvif.org/ver10/media/wsdl/CreateOSD
int __trt__CreateOSD(_trt__CreateOSD* trt__CreateOSD, _trt__CreateOSDResponse& trt__CreateOSDResponse);
//gsoap trt service method-input-action: CreateProfile http://www.onvif.org/ver10/media/wsdl/CreateProfile
int __trt__CreateProfile(_trt__CreateProfile* trt__CreateProfile,
    _trt__CreateProfileResponse& trt__CreateProfileResponse);
//gsoap trt service method-input-action: DeleteOSD http://www.onvif.org/ver10/media/wsdl/DeleteOSD
int __trt__DeleteOSD(_trt__DeleteOSD* trt__DeleteOSD, _trt__DeleteOSDResponse& trt__DeleteOSDResponse);
//gsoap trt service method-input-action: DeleteProfile http://www.onvif.org/ver10/media/wsdl/DeleteProfile
int __trt__DeleteProfile(_trt__DeleteProfile* trt__DeleteProfile,
    _trt__DeleteProfileResponse& trt__DeleteProfileResponse);
//gsoap trt service method-input-action: GetAudioDecoderConfiguration http://www.onvif.org/ver10/media/wsdl/GetAudioDecoderConfiguration
int __trt__GetAudioDecoderConfiguration(_trt__GetAudioDecoderConfiguration* trt__GetAudioDecoderConfiguration,
    _trt__GetAudioDecoderConfigurationResponse& trt__GetAudioDecoderConfigurationResponse);
//gsoap trt service method-input-action: GetAudioDecoderConfigurationOptions http://www.onvif.org/ver10/media/wsdl/GetAudioDecoderConfigurationOptions
int __trt__GetAudioDecoderConfigurationOptions(_trt__GetAudioDecoderConfigurationOptions* trt__GetAudioDecoderConfigurationOptions,
    _trt__GetAudioDecoderConfigurationOptionsResponse& trt__GetAudioDecoderConfigurationOptionsResponse);
//gsoap trt service method-input-action: GetAudioDecoderConfigurations http://www.onvif.org/ver10/media/wsdl/GetAudioDecoderConfigurations
int __trt__GetAudioDecoderConfigurations(_trt__GetAudioDecoderConfigurations* trt__GetAudioDecoderConfigurations,
    _trt__GetAudioDecoderConfigurationsResponse& trt__GetAudioDecoderConfigurationsResponse);
//gsoap trt service method-input-action: GetAudioEncoderConfiguration http://www.onvif.org/ver10/media/wsdl/GetAudioEncoderConfiguration
int __trt__GetAudioEncoderConfiguration(_trt__GetAudioEncoderConfiguration* trt__GetAudioEncoderConfiguration,
    _trt__GetAudioEncoderConfigurationResponse& trt__GetAudioEncoderConfigurationResponse);
//gsoap trt service method-input-action: GetAudioEncoderConfigurationOptions http://www.onvif.org/ver10/media/wsdl/GetAudioEncoderConfigurationOptions
int __trt__GetAudioEncoderConfigurationOptions(_trt__GetAudioEncoderConfigurationOptions* trt__GetAudioEncoderConfigurationOptions,
    _trt__GetAudioEncoderConfigurationOptionsResponse& trt__GetAudioEncoderConfigurationOptionsResponse);
//gsoap trt service method-input-action: GetAudioEncoderConfigurations http://www.onvif.org/ver10/media/wsdl/GetAudioEncoderConfigurations
int __trt__GetAudioEncoderConfigurations(_trt__GetAudioEncoderConfigurations* trt__GetAudioEncoderConfigurations,
    _trt__GetAudioEncoderConfigurationsResponse& trt__GetAudioEncoderConfigurationsResponse);
//gsoap trt service method-input-action: GetAudioOutputConfiguration http://www.onvif.org/ver10/media/wsdl/GetAudioOutputConfiguration
int __trt__GetAudioOutputConfiguration(_trt__GetAudioOutputConfiguration* trt__GetAudioOutputConfiguration,
    _trt__GetAudioOutputConfigurationResponse& trt__GetAudioOutputConfigurationResponse);
//gsoap trt service method-input-action: GetAudioOutputConfigurationOptions http://www.onvif.org/ver10/media/wsdl/GetAudioOutputConfigurationOptions
int __trt__GetAudioOutputConfigurationOptions(_trt__GetAudioOutputConfigurationOptions* trt__GetAudioOutputConfigurationOptions,
    _trt__GetAudioOutputConfigurationOptionsResponse& trt__GetAudioOutputConfigurationOptionsResponse);
//gsoap trt service method-input-action: GetAudioOutputConfigurations http://www.onvif.org/ver10/media/wsdl/GetAudioOutputConfigurations
int __trt__GetAudioOutputConfigurations(_trt__GetAudioOutputConfigurations* trt__GetAudioOutputConfigurations,
    _trt__GetAudioOutputConfigurationsResponse& trt__GetAudioOutputConfigurationsResponse);
//gsoap trt service method-input-action: GetAudioOutputs http://www.onvif.org/ver10/media/wsdl/GetAudioOutputs
int __trt__GetAudioOutputs(_trt__GetAudioOutputs* trt__GetAudioOutputs,
    _trt__GetAudioOutputsResponse& trt__GetAudioOutputsResponse);
//gsoap trt service method-input-action: GetAudioSourceConfiguration http://www.onvif.org/ver10/media/wsdl/GetAudioSourceConfiguration
int __trt__GetAudioSourceConfiguration(_trt__GetAudioSourceConfiguration* trt__GetAudioSourceConfiguration,
    _trt__GetAudioSourceConfigurationResponse& trt__GetAudioSourceConfigurationResponse);
//gsoap trt service method-input-action: GetAudioSourceConfigurationOptions http://www.onvif.org/ver10/media/wsdl/GetAudioSourceConfigurationOptions
int __trt__GetAudioSourceConfigurationOptions(_trt__GetAudioSourceConfigurationOptions* trt__GetAudioSourceConfigurationOptions,
    _trt__GetAudioSourceConfigurationOptionsResponse& trt__GetAudioSourceConfigurationOptionsResponse);
//gsoap trt service method-input-action: GetAudioSourceConfigurations http://www.onvif.org/ver10/media/wsdlGetAudioSourceConfigurations/
int __trt__GetAudioSourceConfigurations(_trt__GetAudioSourceConfigurations* trt__GetAudioSourceConfigurations,
    _trt__GetAudioSourceConfigurationsResponse& trt__GetAudioSourceConfigurationsResponse);
//gsoap trt service method-input-action: GetAudioSources http://www.onvif.org/ver10/media/wsdl/GetAudioSources
int __trt__GetAudioSources(_trt__GetAudioSources* trt__GetAudioSources,
    _trt__GetAudioSourcesResponse& trt__GetAudioSourcesResponse);
//gsoap trt service method-input-action: GetCompatibleAudioDecoderConfigurations http://www.onvif.org/ver10/media/wsdl/GetCompatibleAudioDecoderConfigurations
int __trt__GetCompatibleAudioDecoderConfigurations(_trt__GetCompatibleAudioDecoderConfigurations* trt__GetCompatibleAudioDecoderConfigurations,
    _trt__GetCompatibleAudioDecoderConfigurationsResponse& trt__GetCompatibleAudioDecoderConfigurationsResponse);
//gsoap trt service method-input-action: GetCompatibleAudioEncoderConfigurations http://www.onvif.org/ver10/media/wsdl/GetCompatibleAudioEncoderConfigurations
int __trt__GetCompatibleAudioEncoderConfigurations(_trt__GetCompatibleAudioEncoderConfigurations* trt__GetCompatibleAudioEncoderConfigurations,
    _trt__GetCompatibleAudioEncoderConfigurationsResponse& trt__GetCompatibleAudioEncoderConfigurationsResponse);
//gsoap trt service method-input-action: GetCompatibleAudioOutputConfigurations http://www.onvif.org/ver10/media/wsdl/GetCompatibleAudioOutputConfigurations
int __trt__GetCompatibleAudioOutputConfigurations(_trt__GetCompatibleAudioOutputConfigurations* trt__GetCompatibleAudioOutputConfigurations,
    _trt__GetCompatibleAudioOutputConfigurationsResponse& trt__GetCompatibleAudioOutputConfigurationsResponse);
//gsoap trt service method-input-action: GetCompatibleAudioSourceConfigurations http://www.onvif.org/ver10/media/wsdl/GetCompatibleAudioSourceConfigurations
int __trt__GetCompatibleAudioSourceConfigurations(_trt__GetCompatibleAudioSourceConfigurations* trt__GetCompatibleAudioSourceConfigurations,
    _trt__GetCompatibleAudioSourceConfigurationsResponse& trt__GetCompatibleAudioSourceConfigurationsResponse);
//gsoap trt service method-input-action: GetCompatibleMetadataConfigurations http://www.onvif.org/ver10/media/wsdl/GetCompatibleMetadataConfigurations
int __trt__GetCompatibleMetadataConfigurations(_trt__GetCompatibleMetadataConfigurations* trt__GetCompatibleMetadataConfigurations,
    _trt__GetCompatibleMetadataConfigurationsResponse& trt__GetCompatibleMetadataConfigurationsResponse);
//gsoap trt service method-input-action: GetCompatibleVideoAnalyticsConfigurations http://www.onvif.org/ver10/media/wsdl/GetCompatibleVideoAnalyticsConfigurations
int __trt__GetCompatibleVideoAnalyticsConfigurations(_trt__GetCompatibleVideoAnalyticsConfigurations* trt__GetCompatibleVideoAnalyticsConfigurations,
    _trt__GetCompatibleVideoAnalyticsConfigurationsResponse& trt__GetCompatibleVideoAnalyticsConfigurationsResponse);
//gsoap trt service method-input-action: GetCompatibleVideoEncoderConfigurations http://www.onvif.org/ver10/media/wsdl/GetCompatibleVideoEncoderConfigurations
int __trt__GetCompatibleVideoEncoderConfigurations(_trt__GetCompatibleVideoEncoderConfigurations* trt__GetCompatibleVideoEncoderConfigurations,
    _trt__GetCompatibleVideoEncoderConfigurationsResponse& trt__GetCompatibleVideoEncoderConfigurationsResponse);
//gsoap trt service method-input-action: GetCompatibleVideoSourceConfigurations http://www.onvif.org/ver10/media/wsdl/GetCompatibleVideoSourceConfigurations
int __trt__GetCompatibleVideoSourceConfigurations(_trt__GetCompatibleVideoSourceConfigurations* trt__GetCompatibleVideoSourceConfigurations,
    _trt__GetCompatibleVideoSourceConfigurationsResponse& trt__GetCompatibleVideoSourceConfigurationsResponse);
//gsoap trt service method-input-action: GetGuaranteedNumberOfVideoEncoderInstances http://www.onvif.org/ver10/media/wsdl/GetGuaranteedNumberOfVideoEncoderInstances
int __trt__GetGuaranteedNumberOfVideoEncoderInstances(_trt__GetGuaranteedNumberOfVideoEncoderInstances* trt__GetGuaranteedNumberOfVideoEncoderInstances,
    _trt__GetGuaranteedNumberOfVideoEncoderInstancesResponse& trt__GetGuaranteedNumberOfVideoEncoderInstancesResponse);
//gsoap trt service method-input-action: GetMetadataConfiguration http://www.onvif.org/ver10/media/wsdl/GetMetadataConfiguration
int __trt__GetMetadataConfiguration(_trt__GetMetadataConfiguration* trt__GetMetadataConfiguration,
    _trt__GetMetadataConfigurationResponse& trt__GetMetadataConfigurationResponse);
//gsoap trt service method-input-action: GetMetadataConfigurationOptions http://www.onvif.org/ver10/media/wsdl/GetMetadataConfigurationOptions
int __trt__GetMetadataConfigurationOptions(_trt__GetMetadataConfigurationOptions* trt__GetMetadataConfigurationOptions,
    _trt__GetMetadataConfigurationOptionsResponse& trt__GetMetadataConfigurationOptionsResponse);
//gsoap trt service method-input-action: GetMetadataConfigurations http://www.onvif.org/ver10/media/wsdl/GetMetadataConfigurations
int __trt__GetMetadataConfigurations(_trt__GetMetadataConfigurations* trt__GetMetadataConfigurations,
    _trt__GetMetadataConfigurationsResponse& trt__GetMetadataConfigurationsResponse);
//gsoap trt service method-input-action: GetOSD http://www.onvif.org/ver10/media/wsdl/GetOSD
int __trt__GetOSD(_trt__GetOSD* trt__GetOSD, _trt__GetOSDResponse& trt__GetOSDResponse);
//gsoap trt service method-input-action: GetOSDOptions http://www.onvif.org/ver10/media/wsdl/GetOSDOptions
int __trt__GetOSDOptions(_trt__GetOSDOptions* trt__GetOSDOptions,
    _trt__GetOSDOptionsResponse& trt__GetOSDOptionsResponse);
//gsoap trt service method-input-action: GetOSDs http://www.onvif.org/ver10/media/wsdl/GetOSDs
int __trt__GetOSDs(_trt__GetOSDs* trt__GetOSDs, _trt__GetOSDsResponse& trt__GetOSDsResponse);
//gsoap trt service method-input-action: GetVideoAnalyticsConfiguration http://www.onvif.org/ver10/media/wsdl/GetVideoAnalyticsConfiguration
int __trt__GetVideoAnalyticsConfiguration(_trt__GetVideoAnalyticsConfiguration* trt__GetVideoAnalyticsConfiguration,
    _trt__GetVideoAnalyticsConfigurationResponse& trt__GetVideoAnalyticsConfigurationResponse);
//gsoap trt service method-input-action: GetVideoAnalyticsConfigurations http://www.onvif.org/ver10/media/wsdl/GetVideoAnalyticsConfigurations
int __trt__GetVideoAnalyticsConfigurations(_trt__GetVideoAnalyticsConfigurations* trt__GetVideoAnalyticsConfigurations,
    _trt__GetVideoAnalyticsConfigurationsResponse& trt__GetVideoAnalyticsConfigurationsResponse);
//gsoap trt service method-input-action: GetVideoSourceModes http://www.onvif.org/ver10/media/wsdl/GetVideoSourceModes
int __trt__GetVideoSourceModes(_trt__GetVideoSourceModes* trt__GetVideoSourceModes,
    _trt__GetVideoSourceModesResponse& trt__GetVideoSourceModesResponse);
//gsoap trt service method-input-action: RemoveAudioDecoderConfiguration http://www.onvif.org/ver10/media/wsdl/RemoveAudioDecoderConfiguration
int __trt__RemoveAudioDecoderConfiguration(_trt__RemoveAudioDecoderConfiguration* trt__RemoveAudioDecoderConfiguration,
    _trt__RemoveAudioDecoderConfigurationResponse& trt__RemoveAudioDecoderConfigurationResponse);
//gsoap trt service method-input-action: RemoveAudioEncoderConfiguration http://www.onvif.org/ver10/media/wsdl/RemoveAudioEncoderConfiguration
int __trt__RemoveAudioEncoderConfiguration(_trt__RemoveAudioEncoderConfiguration* trt__RemoveAudioEncoderConfiguration,
    _trt__RemoveAudioEncoderConfigurationResponse& trt__RemoveAudioEncoderConfigurationResponse);
//gsoap trt service method-input-action: RemoveAudioOutputConfiguration http://www.onvif.org/ver10/media/wsdl/RemoveAudioOutputConfiguration
int __trt__RemoveAudioOutputConfiguration(_trt__RemoveAudioOutputConfiguration* trt__RemoveAudioOutputConfiguration,
    _trt__RemoveAudioOutputConfigurationResponse& trt__RemoveAudioOutputConfigurationResponse);
//gsoap trt service method-input-action: RemoveAudioSourceConfiguration http://www.onvif.org/ver10/media/wsdl/RemoveAudioSourceConfiguration
int __trt__RemoveAudioSourceConfiguration(_trt__RemoveAudioSourceConfiguration* trt__RemoveAudioSourceConfiguration,
    _trt__RemoveAudioSourceConfigurationResponse& trt__RemoveAudioSourceConfigurationResponse);
//gsoap trt service method-input-action: RemoveMetadataConfiguration http://www.onvif.org/ver10/media/wsdl/RemoveMetadataConfiguration
int __trt__RemoveMetadataConfiguration(_trt__RemoveMetadataConfiguration* trt__RemoveMetadataConfiguration,
    _trt__RemoveMetadataConfigurationResponse& trt__RemoveMetadataConfigurationResponse);
//gsoap trt service method-input-action: RemovePTZConfiguration http://www.onvif.org/ver10/media/wsdl/RemovePTZConfiguration
int __trt__RemovePTZConfiguration(_trt__RemovePTZConfiguration* trt__RemovePTZConfiguration,
    _trt__RemovePTZConfigurationResponse& trt__RemovePTZConfigurationResponse);
//gsoap trt service method-input-action: RemoveVideoAnalyticsConfiguration http://www.onvif.org/ver10/media/wsdl/RemoveVideoAnalyticsConfiguration
int __trt__RemoveVideoAnalyticsConfiguration(_trt__RemoveVideoAnalyticsConfiguration* trt__RemoveVideoAnalyticsConfiguration,
    _trt__RemoveVideoAnalyticsConfigurationResponse& trt__RemoveVideoAnalyticsConfigurationResponse);
//gsoap trt service method-input-action: RemoveVideoEncoderConfiguration http://www.onvif.org/ver10/media/wsdl/RemoveVideoEncoderConfiguration
int __trt__RemoveVideoEncoderConfiguration(_trt__RemoveVideoEncoderConfiguration* trt__RemoveVideoEncoderConfiguration,
    _trt__RemoveVideoEncoderConfigurationResponse& trt__RemoveVideoEncoderConfigurationResponse);
//gsoap trt service method-input-action: RemoveVideoSourceConfiguration http://www.onvif.org/ver10/media/wsdl/RemoveVideoSourceConfiguration
int __trt__RemoveVideoSourceConfiguration(_trt__RemoveVideoSourceConfiguration* trt__RemoveVideoSourceConfiguration,
    _trt__RemoveVideoSourceConfigurationResponse& trt__RemoveVideoSourceConfigurationResponse);
//gsoap trt service method-input-action: SetAudioDecoderConfiguration http://www.onvif.org/ver10/media/wsdl/SetAudioDecoderConfiguration
int __trt__SetAudioDecoderConfiguration(_trt__SetAudioDecoderConfiguration* trt__SetAudioDecoderConfiguration,
    _trt__SetAudioDecoderConfigurationResponse& trt__SetAudioDecoderConfigurationResponse);
//gsoap trt service method-input-action: SetAudioEncoderConfiguration http://www.onvif.org/ver10/media/wsdl/SetAudioEncoderConfiguration
int __trt__SetAudioEncoderConfiguration(_trt__SetAudioEncoderConfiguration* trt__SetAudioEncoderConfiguration,
    _trt__SetAudioEncoderConfigurationResponse& trt__SetAudioEncoderConfigurationResponse);
//gsoap trt service method-input-action: SetAudioOutputConfiguration http://www.onvif.org/ver10/media/wsdl/SetAudioOutputConfiguration
int __trt__SetAudioOutputConfiguration(_trt__SetAudioOutputConfiguration* trt__SetAudioOutputConfiguration,
    _trt__SetAudioOutputConfigurationResponse& trt__SetAudioOutputConfigurationResponse);
//gsoap trt service method-input-action: SetAudioSourceConfiguration http://www.onvif.org/ver10/media/wsdl/SetAudioSourceConfiguration
int __trt__SetAudioSourceConfiguration(_trt__SetAudioSourceConfiguration* trt__SetAudioSourceConfiguration,
    _trt__SetAudioSourceConfigurationResponse& trt__SetAudioSourceConfigurationResponse);
//gsoap trt service method-input-action: SetMetadataConfiguration http://www.onvif.org/ver10/media/wsdl/SetMetadataConfiguration
int __trt__SetMetadataConfiguration(_trt__SetMetadataConfiguration* trt__SetMetadataConfiguration,
    _trt__SetMetadataConfigurationResponse& trt__SetMetadataConfigurationResponse);
//gsoap trt service method-input-action: SetOSD http://www.onvif.org/ver10/media/wsdl/SetOSD
int __trt__SetOSD(_trt__SetOSD* trt__SetOSD, _trt__SetOSDResponse& trt__SetOSDResponse);
//gsoap trt service method-input-action: SetVideoAnalyticsConfiguration http://www.onvif.org/ver10/media/wsdl/SetVideoAnalyticsConfiguration
int __trt__SetVideoAnalyticsConfiguration(_trt__SetVideoAnalyticsConfiguration* trt__SetVideoAnalyticsConfiguration,
    _trt__SetVideoAnalyticsConfigurationResponse& trt__SetVideoAnalyticsConfigurationResponse);
//gsoap trt service method-input-action: SetVideoEncoderConfiguration http://www.onvif.org/ver10/media/wsdl/SetVideoEncoderConfiguration
int __trt__SetVideoEncoderConfiguration(_trt__SetVideoEncoderConfiguration* trt__SetVideoEncoderConfiguration,
    _trt__SetVideoEncoderConfigurationResponse& trt__SetVideoEncoderConfigurationResponse);
//gsoap trt service method-input-action: SetVideoSourceConfiguration http://www.onvif.org/ver10/media/wsdl/SetVideoSourceConfiguration
int __trt__SetVideoSourceConfiguration(_trt__SetVideoSourceConfiguration* trt__SetVideoSourceConfiguration,
    _trt__SetVideoSourceConfigurationResponse& trt__SetVideoSourceConfigurationResponse);
//gsoap trt service method-input-action: SetVideoSourceMode http://www.onvif.org/ver10/media/wsdl/SetVideoSourceMode
int __trt__SetVideoSourceMode(_trt__SetVideoSourceMode* trt__SetVideoSourceMode,
    _trt__SetVideoSourceModeResponse& trt__SetVideoSourceModeResponse);
//gsoap trt service method-input-action: StartMulticastStreaming http://www.onvif.org/ver10/media/wsdl/StartMulticastStreaming
int __trt__StartMulticastStreaming(_trt__StartMulticastStreaming* trt__StartMulticastStreaming,
    _trt__StartMulticastStreamingResponse& trt__StartMulticastStreamingResponse);
//gsoap trt service method-input-action: StopMulticastStreaming http://www.onvif.org/ver10/media/wsdl/StopMulticastStreaming
int __trt__StopMulticastStreaming(_trt__StopMulticastStreaming* trt__StopMulticastStreaming,
    _trt__StopMulticastStreamingResponse& trt__StopMulticastStreamingResponse);
