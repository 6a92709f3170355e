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
    @ int*                MaximumNumberOfProfiles 0;
    @ tt__StringAttrList* ConfigurationsSupported 0;
};

class tr2__StreamingCapabilities
{ public:
    @ bool* RTSPStreaming            0;
    @ bool* RTPMulticast             0;
    @ bool* RTP_USCORERTSP_USCORETCP 0;
    @ bool* NonAggregateControl      0;
    @ bool* AutoStartMulticast       0;
    @ bool* SecureRTSPStreaming      0;
};

class tr2__Capabilities2
{ public:
    tr2__ProfileCapabilities*   ProfileCapabilities   1;
    tr2__StreamingCapabilities* StreamingCapabilities 1;
    @ bool*                     SnapshotUri           0;
};

// Profiles

class tr2__ConfigurationSet
{ public:
    tt__VideoSourceConfiguration*    VideoSource  0;
    tt__VideoEncoder2Configuration*  VideoEncoder 0;
    tt__VideoAnalyticsConfiguration* Analytics    0;
    tt__MetadataConfiguration*       Metadata     0;
};

class tr2__MediaProfile
{ public:
    tt__Name               Name           1;
    tr2__ConfigurationSet* Configurations 0;
    @ tt__ReferenceToken   token          1;
    @ bool*                fixed          0;
};

// Messages

/// The request of every operation that gives configurations or their options.
class tr2__GetConfiguration
{ public:
    tt__ReferenceToken* ConfigurationToken 0;
    tt__ReferenceToken* ProfileToken       0;
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

class _tr2__GetStreamUri
{ public:
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
