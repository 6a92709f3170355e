// The analytics service, ver20 (tan): the operations of its rule engine and of its analytics engine in one class.
// Source: ONVIF Analytics Service Specification, analytics.wsdl.

#import "schema.h"

//gsoap tan schema namespace:     http://www.onvif.org/ver20/analytics/wsdl
//gsoap tan schema elementForm:   qualified
//gsoap tan schema attributeForm: unqualified

//gsoap tan service name:      RuleEngineBinding
//gsoap tan service type:      RuleEngine
//gsoap tan service namespace: http://www.onvif.org/ver20/analytics/wsdl
//gsoap tan service transport: http://schemas.xmlsoap.org/soap/http

class tan__Capabilities
{ public:
    @ bool*           RuleSupport                        0;
    @ bool*           AnalyticsModuleSupport             0;
    @ bool*           CellBasedSceneDescriptionSupported 0;
    @ bool*           RuleOptionsSupported               0;
    @ bool*           AnalyticsModuleOptionsSupported    0;
    @ bool*           SupportedMetadata                  0;
};

/// What an analytics module puts into a metadata stream.
class tan__MetadataInfo
{ public:
    tt__Frame*   SampleFrame 1;
    @ xsd__QName Type        1;
};

// Messages

class _tan__GetServiceCapabilitiesResponse
{ public:
    tan__Capabilities* Capabilities 1;
};

class _tan__GetSupportedAnalyticsModulesResponse
{ public:
    tt__SupportedAnalyticsModules* SupportedAnalyticsModules 1;
};

class _tan__GetAnalyticsModulesResponse
{ public:
    std::vector<tt__Config*> AnalyticsModule 0;
};

class _tan__GetSupportedMetadataResponse
{ public:
    std::vector<tan__MetadataInfo*> AnalyticsModule 0;
};
