// The Media2 service, ver20 (tr2).
// Source: ONVIF Media2 Service Specification, media.wsdl.

#import "schema.h"

//gsoap tr2 schema namespace:     http://www.onvif.org/ver20/media/wsdl
//gsoap tr2 schema elementForm:   qualified
//gsoap tr2 schema attributeForm: unqualified

//gsoap tr2 service name:      Media2Binding
//gsoap tr2 service type:      Media2
//gsoap tr2 service namespace: http://www.onvif.org/ver20/media/wsdl
//gsoap tr2 service transport: http://schemas.xmlsoap.org/soap/http

// Capabilities

class tr2__ProfileCapabilities
{ public:
    std::vector<xsd__anyType> __any                   0;
    @ int*                    MaximumNumberOfProfiles 0;
    @ tt__StringAttrList*     ConfigurationsSupported 0;
    @ xsd__anyAttribute       __anyAttribute;
};

class tr2__StreamingCapabilities
{ public:
    std::vector<xsd__anyType> __any                    0;
    @ bool*                   RTSPStreaming            0;
    @ bool*                   RTPMulticast             0;
    @ bool*                   RTP_USCORERTSP_USCORETCP 0;
    @ bool*                   NonAggregateControl      0;
    @ xsd__anyURI*            RTSPWebSocketUri         0;
    @ bool*                   AutoStartMulticast       0;
    @ bool*                   SecureRTSPStreaming      0;
    @ xsd__anyAttribute       __anyAttribute;
};

class tr2__Capabilities2
{ public:
    tr2__ProfileCapabilities*   ProfileCapabilities   1;
    tr2__StreamingCapabilities* StreamingCapabilities 1;
    std::vector<xsd__anyType>   __any                 0;
    @ bool*                     SnapshotUri           0;
    @ bool*                     Rotation              0;
    @ bool*                     VideoSourceMode       0;
    @ bool*                     OSD                   0;
    @ bool*                     TemporaryOSDText      0;
    @ bool*                     Mask                  0;
    @ bool*                     SourceMask            0;
    @ xsd__anyAttribute         __anyAttribute;
};

// Profiles

typedef tt__Unused tr2__ReceiverConfiguration;

class tr2__ConfigurationSet
{ public:
    tt__VideoSourceConfiguration*    VideoSource  0;
    tt__AudioSourceConfiguration*    AudioSource  0;
    tt__VideoEncoder2Configuration*  VideoEncoder 0;
    tt__AudioEncoder2Configuration*  AudioEncoder 0;
    tt__VideoAnalyticsConfiguration* Analytics    0;
    tt__PTZConfiguration*            PTZ          0;
    tt__MetadataConfiguration*       Metadata     0;
    tt__AudioOutputConfiguration*    AudioOutput  0;
    tt__AudioDecoderConfiguration*   AudioDecoder 0;
    tr2__ReceiverConfiguration*      Receiver     0;
    std::vector<xsd__anyType>        __any        0;
    @ xsd__anyAttribute              __anyAttribute;
};

class tr2__MediaProfile
{ public:
    tt__Name               Name           1;
    tr2__ConfigurationSet* Configurations 0;
    @ tt__ReferenceToken   token          1;
    @ bool*                fixed          0;
    @ xsd__anyAttribute    __anyAttribute;
};

// Messages of the served operations

/// The request of every operation that gives configurations or their options.
class tr2__GetConfiguration
{ public:
    tt__ReferenceToken* ConfigurationToken 0;
    tt__ReferenceToken* ProfileToken       0;
};

/// The response of every operation that changes something.
class tr2__SetConfigurationResponse
{ public:
};

class _tr2__GetServiceCapabilities
{ public:
};

class _tr2__GetServiceCapabilitiesResponse
{ public:
    tr2__Capabilities2* Capabilities 1;
};

class _tr2__GetProfiles
{ public:
    tt__ReferenceToken*      Token 0;
    std::vector<std::string> Type  0;
};

class _tr2__GetProfilesResponse
{ public:
    std::vector<tr2__MediaProfile*> Profiles 0;
};

class _tr2__GetVideoSourceConfigurationsResponse
{ public:
    std::vector<tt__VideoSourceConfiguration*> Configurations 0;
};

class _tr2__GetVideoEncoderConfigurationsResponse
{ public:
    std::vector<tt__VideoEncoder2Configuration*> Configurations 0;
};

class _tr2__GetAnalyticsConfigurationsResponse
{ public:
    std::vector<tt__VideoAnalyticsConfiguration*> Configurations 0;
};

class _tr2__GetMetadataConfigurationsResponse
{ public:
    std::vector<tt__MetadataConfiguration*> Configurations 0;
};

class _tr2__GetVideoSourceConfigurationOptionsResponse
{ public:
    tt__VideoSourceConfigurationOptions* Options 1;
};

class _tr2__GetVideoEncoderConfigurationOptionsResponse
{ public:
    std::vector<tt__VideoEncoder2ConfigurationOptions*> Options 1;
};

class _tr2__GetMetadataConfigurationOptionsResponse
{ public:
    tt__MetadataConfigurationOptions* Options 1;
};

class _tr2__SetVideoEncoderConfiguration
{ public:
    tt__VideoEncoder2Configuration* Configuration 1;
};

class _tr2__SetMetadataConfiguration
{ public:
    tt__MetadataConfiguration* Configuration 1;
};

class _tr2__GetStreamUri
{ public:
    std::string        Protocol     1;
    tt__ReferenceToken ProfileToken 1;
};

class _tr2__GetStreamUriResponse
{ public:
    xsd__anyURI Uri 1;
};

class _tr2__GetSnapshotUri
{ public:
    tt__ReferenceToken ProfileToken 1;
};

class _tr2__GetSnapshotUriResponse
{ public:
    xsd__anyURI Uri 1;
};

class _tr2__SetSynchronizationPoint
{ public:
    tt__ReferenceToken ProfileToken 1;
};

class _tr2__SetSynchronizationPointResponse
{ public:
};

// Messages of the operations that are not served

typedef tt__UnservedMessage _tr2__AddConfiguration, _tr2__AddConfigurationResponse, _tr2__CreateMask,
    _tr2__CreateMaskResponse, _tr2__CreateOSD, _tr2__CreateOSDResponse, _tr2__CreateProfile,
    _tr2__CreateProfileResponse, _tr2__DeleteMask, _tr2__DeleteOSD, _tr2__DeleteProfile,
    _tr2__DeleteProfileResponse, _tr2__GetAudioDecoderConfigurationOptionsResponse,
    _tr2__GetAudioDecoderConfigurationsResponse, _tr2__GetAudioEncoderConfigurationOptionsResponse,
    _tr2__GetAudioEncoderConfigurationsResponse, _tr2__GetAudioOutputConfigurationOptionsResponse,
    _tr2__GetAudioOutputConfigurationsResponse, _tr2__GetAudioSourceConfigurationOptionsResponse,
    _tr2__GetAudioSourceConfigurationsResponse, _tr2__GetMaskOptions, _tr2__GetMaskOptionsResponse, _tr2__GetMasks,
    _tr2__GetMasksResponse, _tr2__GetOSDOptions, _tr2__GetOSDOptionsResponse, _tr2__GetOSDs, _tr2__GetOSDsResponse,
    _tr2__GetVideoEncoderInstances, _tr2__GetVideoEncoderInstancesResponse, _tr2__GetVideoSourceModes,
    _tr2__GetVideoSourceModesResponse, _tr2__RemoveConfiguration, _tr2__RemoveConfigurationResponse,
    _tr2__SetAudioDecoderConfiguration, _tr2__SetAudioEncoderConfiguration, _tr2__SetAudioOutputConfiguration,
    _tr2__SetAudioSourceConfiguration, _tr2__SetMask, _tr2__SetOSD, _tr2__SetVideoSourceConfiguration,
    _tr2__SetVideoSourceMode, _tr2__SetVideoSourceModeResponse, tr2__StartStopMulticastStreaming;

// Served operations

//gsoap tr2 service method-input-action: GetServiceCapabilities http://www.onvif.org/ver20/media/wsdl/GetServiceCapabilities
int __tr2__GetServiceCapabilities(_tr2__GetServiceCapabilities* tr2__GetServiceCapabilities,
    _tr2__GetServiceCapabilitiesResponse& tr2__GetServiceCapabilitiesResponse);
//gsoap tr2 service method-input-action: GetProfiles http://www.onvif.org/ver20/media/wsdl/GetProfiles
int __tr2__GetProfiles(_tr2__GetProfiles* tr2__GetProfiles, _tr2__GetProfilesResponse& tr2__GetProfilesResponse);
//gsoap tr2 service method-input-action: GetVideoSourceConfigurations http://www.onvif.org/ver20/media/wsdl/GetVideoSourceConfigurations
int __tr2__GetVideoSourceConfigurations(tr2__GetConfiguration* tr2__GetVideoSourceConfigurations,
    _tr2__GetVideoSourceConfigurationsResponse& tr2__GetVideoSourceConfigurationsResponse);
//gsoap tr2 service method-input-action: GetVideoEncoderConfigurations http://www.onvif.org/ver20/media/wsdl/GetVideoEncoderConfigurations
int __tr2__GetVideoEncoderConfigurations(tr2__GetConfiguration* tr2__GetVideoEncoderConfigurations,
    _tr2__GetVideoEncoderConfigurationsResponse& tr2__GetVideoEncoderConfigurationsResponse);
//gsoap tr2 service method-input-action: GetMetadataConfigurations http://www.onvif.org/ver20/media/wsdl/GetMetadataConfigurations
int __tr2__GetMetadataConfigurations(tr2__GetConfiguration* tr2__GetMetadataConfigurations,
    _tr2__GetMetadataConfigurationsResponse& tr2__GetMetadataConfigurationsResponse);
//gsoap tr2 service method-input-action: GetAnalyticsConfigurations http://www.onvif.org/ver20/media/wsdl/GetAnalyticsConfigurations
int __tr2__GetAnalyticsConfigurations(tr2__GetConfiguration* tr2__GetAnalyticsConfigurations,
    _tr2__GetAnalyticsConfigurationsResponse& tr2__GetAnalyticsConfigurationsResponse);
//gsoap tr2 service method-input-action: GetVideoEncoderConfigurationOptions http://www.onvif.org/ver20/media/wsdl/GetVideoEncoderConfigurationOptions
int __tr2__GetVideoEncoderConfigurationOptions(tr2__GetConfiguration* tr2__GetVideoEncoderConfigurationOptions,
    _tr2__GetVideoEncoderConfigurationOptionsResponse& tr2__GetVideoEncoderConfigurationOptionsResponse);
//gsoap tr2 service method-input-action: GetVideoSourceConfigurationOptions http://www.onvif.org/ver20/media/wsdl/GetVideoSourceConfigurationOptions/
int __tr2__GetVideoSourceConfigurationOptions(tr2__GetConfiguration* tr2__GetVideoSourceConfigurationOptions,
    _tr2__GetVideoSourceConfigurationOptionsResponse& tr2__GetVideoSourceConfigurationOptionsResponse);
//gsoap tr2 service method-input-action: GetMetadataConfigurationOptions http://www.onvif.org/ver20/media/wsdl/GetMetadataConfigurationOptions
int __tr2__GetMetadataConfigurationOptions(tr2__GetConfiguration* tr2__GetMetadataConfigurationOptions,
    _tr2__GetMetadataConfigurationOptionsResponse& tr2__GetMetadataConfigurationOptionsResponse);
//gsoap tr2 service method-input-action: SetMetadataConfiguration http://www.onvif.org/ver20/media/wsdl/SetMetadataConfiguration
int __tr2__SetMetadataConfiguration(_tr2__SetMetadataConfiguration* tr2__SetMetadataConfiguration,
    tr2__SetConfigurationResponse& tr2__SetMetadataConfigurationResponse);
//gsoap tr2 service method-input-action: SetVideoEncoderConfiguration http://www.onvif.org/ver20/media/wsdl/SetVideoEncoderConfiguration
int __tr2__SetVideoEncoderConfiguration(_tr2__SetVideoEncoderConfiguration* tr2__SetVideoEncoderConfiguration,
    tr2__SetConfigurationResponse& tr2__SetVideoEncoderConfigurationResponse);
//gsoap tr2 service method-input-action: SetSynchronizationPoint http://www.onvif.org/ver20/media/wsdl/SetSynchronizationPoint
int __tr2__SetSynchronizationPoint(_tr2__SetSynchronizationPoint* tr2__SetSynchronizationPoint,
    _tr2__SetSynchronizationPointResponse& tr2__SetSynchronizationPointResponse);
//gsoap tr2 service method-input-action: GetStreamUri http://www.onvif.org/ver20/media/wsdl/GetStreamUri
int __tr2__GetStreamUri(_tr2__GetStreamUri* tr2__GetStreamUri, _tr2__GetStreamUriResponse& tr2__GetStreamUriResponse);
//gsoap tr2 service method-input-action: GetSnapshotUri http://www.onvif.org/ver20/media/wsdl/GetSnapshotUri
int __tr2__GetSnapshotUri(_tr2__GetSnapshotUri* tr2__GetSnapshotUri,
    _tr2__GetSnapshotUriResponse& tr2__GetSnapshotUriResponse);

// Operations that are not served

//gsoap tr2 service method-input-action: AddConfiguration http://www.onvif.org/ver20/media/wsdl/AddConfiguration
int __tr2__AddConfiguration(_tr2__AddConfiguration* tr2__AddConfiguration,
    _tr2__AddConfigurationResponse& tr2__AddConfigurationResponse);
//gsoap tr2 service method-input-action: CreateMask http://www.onvif.org/ver20/media/wsdl/CreateMask
int __tr2__CreateMask(_tr2__CreateMask* tr2__CreateMask, _tr2__CreateMaskResponse& tr2__CreateMaskResponse);
//gsoap tr2 service method-input-action: CreateOSD http://www.onvif.org/ver20/media/wsdl/CreateOSD
int __tr2__CreateOSD(_tr2__CreateOSD* tr2__CreateOSD, _tr2__CreateOSDResponse& tr2__CreateOSDResponse);
//gsoap tr2 service method-input-action: CreateProfile http://www.onvif.org/ver20/media/wsdl/CreateProfile
int __tr2__CreateProfile(_tr2__CreateProfile* tr2__CreateProfile,
    _tr2__CreateProfileResponse& tr2__CreateProfileResponse);
//gsoap tr2 service method-input-action: DeleteMask http://www.onvif.org/ver20/media/wsdl/DeleteMask
int __tr2__DeleteMask(_tr2__DeleteMask* tr2__DeleteMask, tr2__SetConfigurationResponse& tr2__DeleteMaskResponse);
//gsoap tr2 service method-input-action: DeleteOSD http://www.onvif.org/ver20/media/wsdl/DeleteOSD
int __tr2__DeleteOSD(_tr2__DeleteOSD* tr2__DeleteOSD, tr2__SetConfigurationResponse& tr2__DeleteOSDResponse);
//gsoap tr2 service method-input-action: DeleteProfile http://www.onvif.org/ver20/media/wsdl/DeleteProfile
int __tr2__DeleteProfile(_tr2__DeleteProfile* tr2__DeleteProfile,
    _tr2__DeleteProfileResponse& tr2__DeleteProfileResponse);
//gsoap tr2 service method-input-action: GetAudioDecoderConfigurationOptions http://www.onvif.org/ver20/media/wsdl/GetAudioDecoderConfigurationOptions
int __tr2__GetAudioDecoderConfigurationOptions(tr2__GetConfiguration* tr2__GetAudioDecoderConfigurationOptions,
    _tr2__GetAudioDecoderConfigurationOptionsResponse& tr2__GetAudioDecoderConfigurationOptionsResponse);
//gsoap tr2 service method-input-action: GetAudioDecoderConfigurations http://www.onvif.org/ver20/media/wsdl/GetAudioDecoderConfigurations
int __tr2__GetAudioDecoderConfigurations(tr2__GetConfiguration* tr2__GetAudioDecoderConfigurations,
    _tr2__GetAudioDecoderConfigurationsResponse& tr2__GetAudioDecoderConfigurationsResponse);
//gsoap tr2 service method-input-action: GetAudioEncoderConfigurationOptions http://www.onvif.org/ver20/media/wsdl/GetAudioEncoderConfigurationOptions
int __tr2__GetAudioEncoderConfigurationOptions(tr2__GetConfiguration* tr2__GetAudioEncoderConfigurationOptions,
    _tr2__GetAudioEncoderConfigurationOptionsResponse& tr2__GetAudioEncoderConfigurationOptionsResponse);
//gsoap tr2 service method-input-action: GetAudioEncoderConfigurations http://www.onvif.org/ver20/media/wsdl/GetAudioEncoderConfigurations
int __tr2__GetAudioEncoderConfigurations(tr2__GetConfiguration* tr2__GetAudioEncoderConfigurations,
    _tr2__GetAudioEncoderConfigurationsResponse& tr2__GetAudioEncoderConfigurationsResponse);
//gsoap tr2 service method-input-action: GetAudioOutputConfigurationOptions http://www.onvif.org/ver20/media/wsdl/GetAudioOutputConfigurationOptions
int __tr2__GetAudioOutputConfigurationOptions(tr2__GetConfiguration* tr2__GetAudioOutputConfigurationOptions,
    _tr2__GetAudioOutputConfigurationOptionsResponse& tr2__GetAudioOutputConfigurationOptionsResponse);
//gsoap tr2 service method-input-action: GetAudioOutputConfigurations http://www.onvif.org/ver20/media/wsdl/GetAudioOutputConfigurations
int __tr2__GetAudioOutputConfigurations(tr2__GetConfiguration* tr2__GetAudioOutputConfigurations,
    _tr2__GetAudioOutputConfigurationsResponse& tr2__GetAudioOutputConfigurationsResponse);
//gsoap tr2 service method-input-action: GetAudioSourceConfigurationOptions http://www.onvif.org/ver20/media/wsdl/GetAudioSourceConfigurationOptions
int __tr2__GetAudioSourceConfigurationOptions(tr2__GetConfiguration* tr2__GetAudioSourceConfigurationOptions,
    _tr2__GetAudioSourceConfigurationOptionsResponse& tr2__GetAudioSourceConfigurationOptionsResponse);
//gsoap tr2 service method-input-action: GetAudioSourceConfigurations http://www.onvif.org/ver20/media/wsdl/GetAudioSourceConfigurations/
int __tr2__GetAudioSourceConfigurations(tr2__GetConfiguration* tr2__GetAudioSourceConfigurations,
    _tr2__GetAudioSourceConfigurationsResponse& tr2__GetAudioSourceConfigurationsResponse);
//gsoap tr2 service method-input-action: GetMaskOptions http://www.onvif.org/ver20/media/wsdl/GetMaskOptions
int __tr2__GetMaskOptions(_tr2__GetMaskOptions* tr2__GetMaskOptions,
    _tr2__GetMaskOptionsResponse& tr2__GetMaskOptionsResponse);
//gsoap tr2 service method-input-action: GetMasks http://www.onvif.org/ver20/media/wsdl/GetMasks
int __tr2__GetMasks(_tr2__GetMasks* tr2__GetMasks, _tr2__GetMasksResponse& tr2__GetMasksResponse);
//gsoap tr2 service method-input-action: GetOSDOptions http://www.onvif.org/ver20/media/wsdl/GetOSDOptions
int __tr2__GetOSDOptions(_tr2__GetOSDOptions* tr2__GetOSDOptions,
    _tr2__GetOSDOptionsResponse& tr2__GetOSDOptionsResponse);
//gsoap tr2 service method-input-action: GetOSDs http://www.onvif.org/ver20/media/wsdl/GetOSDs
int __tr2__GetOSDs(_tr2__GetOSDs* tr2__GetOSDs, _tr2__GetOSDsResponse& tr2__GetOSDsResponse);
//gsoap tr2 service method-input-action: GetVideoEncoderInstances http://www.onvif.org/ver20/media/wsdl/GetVideoEncoderInstances
int __tr2__GetVideoEncoderInstances(_tr2__GetVideoEncoderInstances* tr2__GetVideoEncoderInstances,
    _tr2__GetVideoEncoderInstancesResponse& tr2__GetVideoEncoderInstancesResponse);
//gsoap tr2 service method-input-action: GetVideoSourceModes http://www.onvif.org/ver20/media/wsdl/GetVideoSourceModes
int __tr2__GetVideoSourceModes(_tr2__GetVideoSourceModes* tr2__GetVideoSourceModes,
    _tr2__GetVideoSourceModesResponse& tr2__GetVideoSourceModesResponse);
//gsoap tr2 service method-input-action: RemoveConfiguration http://www.onvif.org/ver20/media/wsdl/RemoveConfiguration
int __tr2__RemoveConfiguration(_tr2__RemoveConfiguration* tr2__RemoveConfiguration,
    _tr2__RemoveConfigurationResponse& tr2__RemoveConfigurationResponse);
//gsoap tr2 service method-input-action: SetAudioDecoderConfiguration http://www.onvif.org/ver20/media/wsdl/SetAudioDecoderConfiguration
int __tr2__SetAudioDecoderConfiguration(_tr2__SetAudioDecoderConfiguration* tr2__SetAudioDecoderConfiguration,
    tr2__SetConfigurationResponse& tr2__SetAudioDecoderConfigurationResponse);
//gsoap tr2 service method-input-action: SetAudioEncoderConfiguration http://www.onvif.org/ver20/media/wsdl/SetAudioEncoderConfiguration
int __tr2__SetAudioEncoderConfiguration(_tr2__SetAudioEncoderConfiguration* tr2__SetAudioEncoderConfiguration,
    tr2__SetConfigurationResponse& tr2__SetAudioEncoderConfigurationResponse);
//gsoap tr2 service method-input-action: SetAudioOutputConfiguration http://www.onvif.org/ver20/media/wsdl/SetAudioOutputConfiguration
int __tr2__SetAudioOutputConfiguration(_tr2__SetAudioOutputConfiguration* tr2__SetAudioOutputConfiguration,
    tr2__SetConfigurationResponse& tr2__SetAudioOutputConfigurationResponse);
//gsoap tr2 service method-input-action: SetAudioSourceConfiguration http://www.onvif.org/ver20/media/wsdl/SetAudioSourceConfiguration
int __tr2__SetAudioSourceConfiguration(_tr2__SetAudioSourceConfiguration* tr2__SetAudioSourceConfiguration,
    tr2__SetConfigurationResponse& tr2__SetAudioSourceConfigurationResponse);
//gsoap tr2 service method-input-action: SetMask http://www.onvif.org/ver20/media/wsdl/SetMask
int __tr2__SetMask(_tr2__SetMask* tr2__SetMask, tr2__SetConfigurationResponse& tr2__SetMaskResponse);
//gsoap tr2 service method-input-action: SetOSD http://www.onvif.org/ver20/media/wsdl/SetOSD
int __tr2__SetOSD(_tr2__SetOSD* tr2__SetOSD, tr2__SetConfigurationResponse& tr2__SetOSDResponse);
//gsoap tr2 service method-input-action: SetVideoSourceConfiguration http://www.onvif.org/ver20/media/wsdl/SetVideoSourceConfiguration
int __tr2__SetVideoSourceConfiguration(_tr2__SetVideoSourceConfiguration* tr2__SetVideoSourceConfiguration,
    tr2__SetConfigurationResponse& tr2__SetVideoSourceConfigurationResponse);
//gsoap tr2 service method-input-action: SetVideoSourceMode http://www.onvif.org/ver20/media/wsdl/SetVideoSourceMode
int __tr2__SetVideoSourceMode(_tr2__SetVideoSourceMode* tr2__SetVideoSourceMode,
    _tr2__SetVideoSourceModeResponse& tr2__SetVideoSourceModeResponse);
//gsoap tr2 service method-input-action: StartMulticastStreaming http://www.onvif.org/ver20/media/wsdl/StartMulticastStreaming
int __tr2__StartMulticastStreaming(tr2__StartStopMulticastStreaming* tr2__StartMulticastStreaming,
    tr2__SetConfigurationResponse& tr2__StartMulticastStreamingResponse);
//gsoap tr2 service method-input-action: StopMulticastStreaming http://www.onvif.org/ver20/media/wsdl/StopMulticastStreaming
int __tr2__StopMulticastStreaming(tr2__StartStopMulticastStreaming* tr2__StopMulticastStreaming,
    tr2__SetConfigurationResponse& tr2__StopMulticastStreamingResponse);
