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
    @ int* MaximumNumberOfProfiles 0;
};

class trt__StreamingCapabilities
{ public:
    @ bool* RTPMulticast             0;
    @ bool* RTP_USCORETCP            0;
    @ bool* RTP_USCORERTSP_USCORETCP 0;
    @ bool* NonAggregateControl      0;
    @ bool* NoRTSPStreaming          0;
};

class trt__Capabilities
{ public:
    trt__ProfileCapabilities*   ProfileCapabilities   1;
    trt__StreamingCapabilities* StreamingCapabilities 1;
    @ bool*                     SnapshotUri           0;
};

// Messages

class _trt__GetServiceCapabilitiesResponse
{ public:
    trt__Capabilities* Capabilities 1;
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

class _trt__GetVideoSourcesResponse
{ public:
    std::vector<tt__VideoSource*> VideoSources 0;
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

/// Options: required by the schema, left out because there is nothing to choose from.
class _trt__GetVideoSourceConfigurationOptionsResponse
{ public:
    tt__VideoSourceConfigurationOptions* Options 0;
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
};

class _trt__GetVideoEncoderConfigurationOptionsResponse
{ public:
    tt__VideoEncoderConfigurationOptions* Options 1;
};

class _trt__GetStreamUri
{ public:
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
