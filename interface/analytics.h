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
    std::vector<xsd__anyType> __any                              0;
    @ bool*                   RuleSupport                        0;
    @ bool*                   AnalyticsModuleSupport             0;
    @ bool*                   CellBasedSceneDescriptionSupported 0;
    @ bool*                   RuleOptionsSupported               0;
    @ bool*                   AnalyticsModuleOptionsSupported    0;
    @ bool*                   SupportedMetadata                  0;
    @ tt__StringList*         ImageSendingType                   0;
    @ xsd__anyAttribute       __anyAttribute;
};

/// What an analytics module puts into a metadata stream.
class tan__MetadataInfo
{ public:
    tt__Frame*                SampleFrame 1;
    std::vector<xsd__anyType> __any       0;
    @ xsd__QName              Type        1;
    @ xsd__anyAttribute       __anyAttribute;
};

// Messages of the served operations

class _tan__GetServiceCapabilities
{ public:
};

class _tan__GetServiceCapabilitiesResponse
{ public:
    tan__Capabilities* Capabilities 1;
};

class _tan__GetSupportedAnalyticsModules
{ public:
    tt__ReferenceToken ConfigurationToken 1;
};

class _tan__GetSupportedAnalyticsModulesResponse
{ public:
    tt__SupportedAnalyticsModules* SupportedAnalyticsModules 1;
};

class _tan__GetAnalyticsModules
{ public:
    tt__ReferenceToken ConfigurationToken 1;
};

class _tan__GetAnalyticsModulesResponse
{ public:
    std::vector<tt__Config*> AnalyticsModule 0;
};

class _tan__GetSupportedMetadata
{ public:
    xsd__QName* Type 0;
};

class _tan__GetSupportedMetadataResponse
{ public:
    std::vector<tan__MetadataInfo*> AnalyticsModule 0;
};

// Messages of the operations that are not served

typedef tt__UnservedMessage _tan__CreateAnalyticsModules, _tan__CreateAnalyticsModulesResponse, _tan__CreateRules,
    _tan__CreateRulesResponse, _tan__DeleteAnalyticsModules, _tan__DeleteAnalyticsModulesResponse,
    _tan__DeleteRules, _tan__DeleteRulesResponse, _tan__GetAnalyticsModuleOptions,
    _tan__GetAnalyticsModuleOptionsResponse, _tan__GetRuleOptions, _tan__GetRuleOptionsResponse, _tan__GetRules,
    _tan__GetRulesResponse, _tan__GetSupportedRules, _tan__GetSupportedRulesResponse, _tan__ModifyAnalyticsModules,
    _tan__ModifyAnalyticsModulesResponse, _tan__ModifyRules, _tan__ModifyRulesResponse;

// Served operations

//gsoap tan service method-input-action: GetServiceCapabilities http://www.onvif.org/ver20/analytics/wsdl/GetServiceCapabilities
int __tan__GetServiceCapabilities(_tan__GetServiceCapabilities* tan__GetServiceCapabilities,
    _tan__GetServiceCapabilitiesResponse& tan__GetServiceCapabilitiesResponse);
//gsoap tan service method-input-action: GetSupportedAnalyticsModules http://www.onvif.org/ver20/analytics/wsdl/GetSupportedAnalyticsModules
int __tan__GetSupportedAnalyticsModules(_tan__GetSupportedAnalyticsModules* tan__GetSupportedAnalyticsModules,
    _tan__GetSupportedAnalyticsModulesResponse& tan__GetSupportedAnalyticsModulesResponse);
//gsoap tan service method-input-action: GetAnalyticsModules http://www.onvif.org/ver20/analytics/wsdl/GetAnalyticsModules
int __tan__GetAnalyticsModules(_tan__GetAnalyticsModules* tan__GetAnalyticsModules,
    _tan__GetAnalyticsModulesResponse& tan__GetAnalyticsModulesResponse);
//gsoap tan service method-input-action: GetSupportedMetadata http://www.onvif.org/ver20/analytics/wsdl/GetSupportedMetadata
int __tan__GetSupportedMetadata(_tan__GetSupportedMetadata* tan__GetSupportedMetadata,
    _tan__GetSupportedMetadataResponse& tan__GetSupportedMetadataResponse);

// Operations that are not served

//gsoap tan service method-input-action: CreateAnalyticsModules http://www.onvif.org/ver20/analytics/wsdl/CreateAnalyticsModules
int __tan__CreateAnalyticsModules(_tan__CreateAnalyticsModules* tan__CreateAnalyticsModules,
    _tan__CreateAnalyticsModulesResponse& tan__CreateAnalyticsModulesResponse);
//gsoap tan service method-input-action: CreateRules http://www.onvif.org/ver20/analytics/wsdl/CreateRules
int __tan__CreateRules(_tan__CreateRules* tan__CreateRules, _tan__CreateRulesResponse& tan__CreateRulesResponse);
//gsoap tan service method-input-action: DeleteAnalyticsModules http://www.onvif.org/ver20/analytics/wsdl/DeleteAnalyticsModules
int __tan__DeleteAnalyticsModules(_tan__DeleteAnalyticsModules* tan__DeleteAnalyticsModules,
    _tan__DeleteAnalyticsModulesResponse& tan__DeleteAnalyticsModulesResponse);
//gsoap tan service method-input-action: DeleteRules http://www.onvif.org/ver20/analytics/wsdl/DeleteRules
int __tan__DeleteRules(_tan__DeleteRules* tan__DeleteRules, _tan__DeleteRulesResponse& tan__DeleteRulesResponse);
//gsoap tan service method-input-action: GetAnalyticsModuleOptions http://www.onvif.org/ver20/analytics/wsdl/GetAnalyticsModuleOptions
int __tan__GetAnalyticsModuleOptions(_tan__GetAnalyticsModuleOptions* tan__GetAnalyticsModuleOptions,
    _tan__GetAnalyticsModuleOptionsResponse& tan__GetAnalyticsModuleOptionsResponse);
//gsoap tan service method-input-action: GetRuleOptions http://www.onvif.org/ver20/analytics/wsdl/GetRuleOptions
int __tan__GetRuleOptions(_tan__GetRuleOptions* tan__GetRuleOptions,
    _tan__GetRuleOptionsResponse& tan__GetRuleOptionsResponse);
//gsoap tan service method-input-action: GetRules http://www.onvif.org/ver20/analytics/wsdl/GetRules
int __tan__GetRules(_tan__GetRules* tan__GetRules, _tan__GetRulesResponse& tan__GetRulesResponse);
//gsoap tan service method-input-action: GetSupportedRules http://www.onvif.org/ver20/analytics/wsdl/GetSupportedRules
int __tan__GetSupportedRules(_tan__GetSupportedRules* tan__GetSupportedRules,
    _tan__GetSupportedRulesResponse& tan__GetSupportedRulesResponse);
//gsoap tan service method-input-action: ModifyAnalyticsModules http://www.onvif.org/ver20/analytics/wsdl/ModifyAnalyticsModules
int __tan__ModifyAnalyticsModules(_tan__ModifyAnalyticsModules* tan__ModifyAnalyticsModules,
    _tan__ModifyAnalyticsModulesResponse& tan__ModifyAnalyticsModulesResponse);
//gsoap tan service method-input-action: ModifyRules http://www.onvif.org/ver20/analytics/wsdl/ModifyRules
int __tan__ModifyRules(_tan__ModifyRules* tan__ModifyRules, _tan__ModifyRulesResponse& tan__ModifyRulesResponse);
