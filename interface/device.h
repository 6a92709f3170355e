// The device management service (tds).
// Source: ONVIF Core Specification, devicemgmt.wsdl.

#import "schema.h"

//gsoap tds schema namespace:     http://www.onvif.org/ver10/device/wsdl
//gsoap tds schema elementForm:   qualified
//gsoap tds schema attributeForm: unqualified

//gsoap tds service name:      DeviceBinding
//gsoap tds service type:      Device
//gsoap tds service namespace: http://www.onvif.org/ver10/device/wsdl
//gsoap tds service transport: http://schemas.xmlsoap.org/soap/http

// Capabilities

class tds__NetworkCapabilities
{ public:
    @ bool*             IPFilter            0;
    @ bool*             ZeroConfiguration   0;
    @ bool*             IPVersion6          0;
    @ bool*             DynDNS              0;
    @ bool*             Dot11Configuration  0;
    @ int*              Dot1XConfigurations 0;
    @ bool*             HostnameFromDHCP    0;
    @ int*              NTP                 0;
    @ bool*             DHCPv6              0;
    @ xsd__anyAttribute __anyAttribute;
};

class tds__SecurityCapabilities
{ public:
    @ bool*             TLS1_x002e0          0;
    @ bool*             TLS1_x002e1          0;
    @ bool*             TLS1_x002e2          0;
    @ bool*             OnboardKeyGeneration 0;
    @ bool*             AccessPolicyConfig   0;
    @ bool*             DefaultAccessPolicy  0;
    @ bool*             Dot1X                0;
    @ bool*             RemoteUserHandling   0;
    @ bool*             X_x002e509Token      0;
    @ bool*             SAMLToken            0;
    @ bool*             KerberosToken        0;
    @ bool*             UsernameToken        0;
    @ bool*             HttpDigest           0;
    @ bool*             RELToken             0;
    @ bool*             JsonWebToken         0;
    @ tt__IntList*      SupportedEAPMethods  0;
    @ int*              MaxUsers             0;
    @ int*              MaxUserNameLength    0;
    @ int*              MaxPasswordLength    0;
    @ tt__StringList*   SecurityPolicies     0;
    @ int*              MaxPasswordHistory   0;
    @ tt__StringList*   HashingAlgorithms    0;
    @ xsd__anyAttribute __anyAttribute;
};

class tds__SystemCapabilities
{ public:
    @ bool*               DiscoveryResolve          0;
    @ bool*               DiscoveryBye              0;
    @ bool*               RemoteDiscovery           0;
    @ bool*               SystemBackup              0;
    @ bool*               SystemLogging             0;
    @ bool*               FirmwareUpgrade           0;
    @ bool*               HttpFirmwareUpgrade       0;
    @ bool*               HttpSystemBackup          0;
    @ bool*               HttpSystemLogging         0;
    @ bool*               HttpSupportInformation    0;
    @ bool*               StorageConfiguration      0;
    @ int*                MaxStorageConfigurations  0;
    @ int*                GeoLocationEntries        0;
    @ tt__StringAttrList* AutoGeo                   0;
    @ tt__StringAttrList* StorageTypesSupported     0;
    @ bool*               DiscoveryNotSupported     0;
    @ bool*               NetworkConfigNotSupported 0;
    @ bool*               UserConfigNotSupported    0;
    @ tt__StringAttrList* Addons                    0;
    @ xsd__anyAttribute   __anyAttribute;
};

class tds__MiscCapabilities
{ public:
    @ tt__StringAttrList* AuxiliaryCommands 0;
    @ xsd__anyAttribute   __anyAttribute;
};

/// Network, System: required by the schema, left out because this device configures neither.
class tds__DeviceServiceCapabilities
{ public:
    tds__NetworkCapabilities*  Network  0;
    tds__SecurityCapabilities* Security 1;
    tds__SystemCapabilities*   System   0;
    tds__MiscCapabilities*     Misc     0;
};

/// A service of this device. The capabilities are one element of that service's own namespace.
class tds__Service
{ public:
    xsd__anyURI               Namespace    1;
    xsd__anyURI               XAddr        1;
    class _tds__Service_Capabilities
    { public:
        xsd__anyType          __any        0;
    }*                        Capabilities 0;
    tt__OnvifVersion*         Version      1;
    std::vector<xsd__anyType> __any        0;
    @ xsd__anyAttribute       __anyAttribute;
};

// Messages of the served operations

class _tds__GetServices
{ public:
    bool IncludeCapability 1;
};

class _tds__GetServicesResponse
{ public:
    std::vector<tds__Service*> Service 1;
};

class _tds__GetServiceCapabilities
{ public:
};

class _tds__GetServiceCapabilitiesResponse
{ public:
    tds__DeviceServiceCapabilities* Capabilities 1;
};

class _tds__GetCapabilities
{ public:
    std::vector<enum tt__CapabilityCategory> Category 0;
};

class _tds__GetCapabilitiesResponse
{ public:
    tt__Capabilities* Capabilities 1;
};

class _tds__GetDeviceInformation
{ public:
};

class _tds__GetDeviceInformationResponse
{ public:
    std::string Manufacturer    1;
    std::string Model           1;
    std::string FirmwareVersion 1;
    std::string SerialNumber    1;
    std::string HardwareId      1;
};

class _tds__GetScopes
{ public:
};

class _tds__GetScopesResponse
{ public:
    std::vector<tt__Scope*> Scopes 1;
};

class _tds__GetSystemDateAndTime
{ public:
};

class _tds__GetSystemDateAndTimeResponse
{ public:
    tt__SystemDateTime* SystemDateAndTime 1;
};

class _tds__GetHostname
{ public:
};

class _tds__GetHostnameResponse
{ public:
    tt__HostnameInformation* HostnameInformation 1;
};

class _tds__GetNetworkInterfaces
{ public:
};

class _tds__GetNetworkInterfacesResponse
{ public:
    std::vector<tt__NetworkInterface*> NetworkInterfaces 1;
};

class _tds__GetNetworkProtocols
{ public:
};

class _tds__GetNetworkProtocolsResponse
{ public:
    std::vector<tt__NetworkProtocol*> NetworkProtocols 0;
};

class _tds__GetUsers
{ public:
};

class _tds__GetUsersResponse
{ public:
    std::vector<tt__User*> User 0;
};

class _tds__SetUser
{ public:
    std::vector<tt__User*> User 1;
};

class _tds__SetUserResponse
{ public:
};

// Messages of the operations that are not served

typedef tt__UnservedMessage _tds__AddIPAddressFilter, _tds__AddIPAddressFilterResponse, _tds__AddScopes,
    _tds__AddScopesResponse, _tds__CreateCertificate, _tds__CreateCertificateResponse,
    _tds__CreateDot1XConfiguration, _tds__CreateDot1XConfigurationResponse, _tds__CreateStorageConfiguration,
    _tds__CreateStorageConfigurationResponse, _tds__CreateUsers, _tds__CreateUsersResponse,
    _tds__DeleteCertificates, _tds__DeleteCertificatesResponse, _tds__DeleteDot1XConfiguration,
    _tds__DeleteDot1XConfigurationResponse, _tds__DeleteGeoLocation, _tds__DeleteGeoLocationResponse,
    _tds__DeleteStorageConfiguration, _tds__DeleteStorageConfigurationResponse, _tds__DeleteUsers,
    _tds__DeleteUsersResponse, _tds__GetAccessPolicy, _tds__GetAccessPolicyResponse, _tds__GetCACertificates,
    _tds__GetCACertificatesResponse, _tds__GetCertificateInformation, _tds__GetCertificateInformationResponse,
    _tds__GetCertificates, _tds__GetCertificatesResponse, _tds__GetCertificatesStatus,
    _tds__GetCertificatesStatusResponse, _tds__GetClientCertificateMode, _tds__GetClientCertificateModeResponse,
    _tds__GetDNS, _tds__GetDNSResponse, _tds__GetDPAddresses, _tds__GetDPAddressesResponse, _tds__GetDiscoveryMode,
    _tds__GetDiscoveryModeResponse, _tds__GetDot11Capabilities, _tds__GetDot11CapabilitiesResponse,
    _tds__GetDot11Status, _tds__GetDot11StatusResponse, _tds__GetDot1XConfiguration,
    _tds__GetDot1XConfigurationResponse, _tds__GetDot1XConfigurations, _tds__GetDot1XConfigurationsResponse,
    _tds__GetDynamicDNS, _tds__GetDynamicDNSResponse, _tds__GetEndpointReference,
    _tds__GetEndpointReferenceResponse, _tds__GetGeoLocation, _tds__GetGeoLocationResponse,
    _tds__GetIPAddressFilter, _tds__GetIPAddressFilterResponse, _tds__GetNTP, _tds__GetNTPResponse,
    _tds__GetNetworkDefaultGateway, _tds__GetNetworkDefaultGatewayResponse, _tds__GetPkcs10Request,
    _tds__GetPkcs10RequestResponse, _tds__GetRelayOutputs, _tds__GetRelayOutputsResponse,
    _tds__GetRemoteDiscoveryMode, _tds__GetRemoteDiscoveryModeResponse, _tds__GetRemoteUser,
    _tds__GetRemoteUserResponse, _tds__GetStorageConfiguration, _tds__GetStorageConfigurationResponse,
    _tds__GetStorageConfigurations, _tds__GetStorageConfigurationsResponse, _tds__GetSystemBackup,
    _tds__GetSystemBackupResponse, _tds__GetSystemLog, _tds__GetSystemLogResponse,
    _tds__GetSystemSupportInformation, _tds__GetSystemSupportInformationResponse, _tds__GetSystemUris,
    _tds__GetSystemUrisResponse, _tds__GetWsdlUrl, _tds__GetWsdlUrlResponse, _tds__GetZeroConfiguration,
    _tds__GetZeroConfigurationResponse, _tds__LoadCACertificates, _tds__LoadCACertificatesResponse,
    _tds__LoadCertificateWithPrivateKey, _tds__LoadCertificateWithPrivateKeyResponse, _tds__LoadCertificates,
    _tds__LoadCertificatesResponse, _tds__RemoveIPAddressFilter, _tds__RemoveIPAddressFilterResponse,
    _tds__RemoveScopes, _tds__RemoveScopesResponse, _tds__RestoreSystem, _tds__RestoreSystemResponse,
    _tds__ScanAvailableDot11Networks, _tds__ScanAvailableDot11NetworksResponse, _tds__SendAuxiliaryCommand,
    _tds__SendAuxiliaryCommandResponse, _tds__SetAccessPolicy, _tds__SetAccessPolicyResponse,
    _tds__SetCertificatesStatus, _tds__SetCertificatesStatusResponse, _tds__SetClientCertificateMode,
    _tds__SetClientCertificateModeResponse, _tds__SetDNS, _tds__SetDNSResponse, _tds__SetDPAddresses,
    _tds__SetDPAddressesResponse, _tds__SetDiscoveryMode, _tds__SetDiscoveryModeResponse,
    _tds__SetDot1XConfiguration, _tds__SetDot1XConfigurationResponse, _tds__SetDynamicDNS,
    _tds__SetDynamicDNSResponse, _tds__SetGeoLocation, _tds__SetGeoLocationResponse, _tds__SetHostname,
    _tds__SetHostnameResponse, _tds__SetHostnameFromDHCP, _tds__SetHostnameFromDHCPResponse,
    _tds__SetIPAddressFilter, _tds__SetIPAddressFilterResponse, _tds__SetNTP, _tds__SetNTPResponse,
    _tds__SetNetworkDefaultGateway, _tds__SetNetworkDefaultGatewayResponse, _tds__SetNetworkInterfaces,
    _tds__SetNetworkInterfacesResponse, _tds__SetNetworkProtocols, _tds__SetNetworkProtocolsResponse,
    _tds__SetRelayOutputSettings, _tds__SetRelayOutputSettingsResponse, _tds__SetRelayOutputState,
    _tds__SetRelayOutputStateResponse, _tds__SetRemoteDiscoveryMode, _tds__SetRemoteDiscoveryModeResponse,
    _tds__SetRemoteUser, _tds__SetRemoteUserResponse, _tds__SetScopes, _tds__SetScopesResponse,
    _tds__SetStorageConfiguration, _tds__SetStorageConfigurationResponse, _tds__SetSystemDateAndTime,
    _tds__SetSystemDateAndTimeResponse, _tds__SetSystemFactoryDefault, _tds__SetSystemFactoryDefaultResponse,
    _tds__SetZeroConfiguration, _tds__SetZeroConfigurationResponse, _tds__StartFirmwareUpgrade,
    _tds__StartFirmwareUpgradeResponse, _tds__StartSystemRestore, _tds__StartSystemRestoreResponse,
    _tds__SystemReboot, _tds__SystemRebootResponse, _tds__UpgradeSystemFirmware,
    _tds__UpgradeSystemFirmwareResponse;

// Served operations

//gsoap tds service method-input-action: GetServiceCapabilities http://www.onvif.org/ver10/device/wsdl/GetServiceCapabilities
int __tds__GetServiceCapabilities(_tds__GetServiceCapabilities* tds__GetServiceCapabilities,
    _tds__GetServiceCapabilitiesResponse& tds__GetServiceCapabilitiesResponse);
//gsoap tds service method-input-action: GetDeviceInformation http://www.onvif.org/ver10/device/wsdl/GetDeviceInformation
int __tds__GetDeviceInformation(_tds__GetDeviceInformation* tds__GetDeviceInformation,
    _tds__GetDeviceInformationResponse& tds__GetDeviceInformationResponse);
//gsoap tds service method-input-action: GetServices http://www.onvif.org/ver10/device/wsdl/GetServices
int __tds__GetServices(_tds__GetServices* tds__GetServices, _tds__GetServicesResponse& tds__GetServicesResponse);
//gsoap tds service method-input-action: GetCapabilities http://www.onvif.org/ver10/device/wsdl/GetCapabilities
int __tds__GetCapabilities(_tds__GetCapabilities* tds__GetCapabilities,
    _tds__GetCapabilitiesResponse& tds__GetCapabilitiesResponse);
//gsoap tds service method-input-action: GetScopes http://www.onvif.org/ver10/device/wsdl/GetScopes
int __tds__GetScopes(_tds__GetScopes* tds__GetScopes, _tds__GetScopesResponse& tds__GetScopesResponse);
//gsoap tds service method-input-action: GetSystemDateAndTime http://www.onvif.org/ver10/device/wsdl/GetSystemDateAndTime
int __tds__GetSystemDateAndTime(_tds__GetSystemDateAndTime* tds__GetSystemDateAndTime,
    _tds__GetSystemDateAndTimeResponse& tds__GetSystemDateAndTimeResponse);
//gsoap tds service method-input-action: GetHostname http://www.onvif.org/ver10/device/wsdl/GetHostname
int __tds__GetHostname(_tds__GetHostname* tds__GetHostname, _tds__GetHostnameResponse& tds__GetHostnameResponse);
//gsoap tds service method-input-action: GetNetworkInterfaces http://www.onvif.org/ver10/device/wsdl/GetNetworkInterfaces
int __tds__GetNetworkInterfaces(_tds__GetNetworkInterfaces* tds__GetNetworkInterfaces,
    _tds__GetNetworkInterfacesResponse& tds__GetNetworkInterfacesResponse);
//gsoap tds service method-input-action: GetNetworkProtocols http://www.onvif.org/ver10/device/wsdl/GetNetworkProtocols
int __tds__GetNetworkProtocols(_tds__GetNetworkProtocols* tds__GetNetworkProtocols,
    _tds__GetNetworkProtocolsResponse& tds__GetNetworkProtocolsResponse);
//gsoap tds service method-input-action: GetUsers http://www.onvif.org/ver10/device/wsdl/GetUsers
int __tds__GetUsers(_tds__GetUsers* tds__GetUsers, _tds__GetUsersResponse& tds__GetUsersResponse);
//gsoap tds service method-input-action: SetUser http://www.onvif.org/ver10/device/wsdl/SetUser
int __tds__SetUser(_tds__SetUser* tds__SetUser, _tds__SetUserResponse& tds__SetUserResponse);

// Operations that are not served

//gsoap tds service method-input-action: AddIPAddressFilter http://www.onvif.org/ver10/device/wsdl/AddIPAddressFilter
int __tds__AddIPAddressFilter(_tds__AddIPAddressFilter* tds__AddIPAddressFilter,
    _tds__AddIPAddressFilterResponse& tds__AddIPAddressFilterResponse);
//gsoap tds service method-input-action: AddScopes http://www.onvif.org/ver10/device/wsdl/AddScopes
int __tds__AddScopes(_tds__AddScopes* tds__AddScopes, _tds__AddScopesResponse& tds__AddScopesResponse);
//gsoap tds service method-input-action: CreateCertificate http://www.onvif.org/ver10/device/wsdl/CreateCertificate
int __tds__CreateCertificate(_tds__CreateCertificate* tds__CreateCertificate,
    _tds__CreateCertificateResponse& tds__CreateCertificateResponse);
//gsoap tds service method-input-action: CreateDot1XConfiguration http://www.onvif.org/ver10/device/wsdl/CreateDot1XConfiguration
int __tds__CreateDot1XConfiguration(_tds__CreateDot1XConfiguration* tds__CreateDot1XConfiguration,
    _tds__CreateDot1XConfigurationResponse& tds__CreateDot1XConfigurationResponse);
//gsoap tds service method-input-action: CreateStorageConfiguration http://www.onvif.org/ver10/device/wsdl/CreateStorageConfiguration
int __tds__CreateStorageConfiguration(_tds__CreateStorageConfiguration* tds__CreateStorageConfiguration,
    _tds__CreateStorageConfigurationResponse& tds__CreateStorageConfigurationResponse);
//gsoap tds service method-input-action: CreateUsers http://www.onvif.org/ver10/device/wsdl/CreateUsers
int __tds__CreateUsers(_tds__CreateUsers* tds__CreateUsers, _tds__CreateUsersResponse& tds__CreateUsersResponse);
//gsoap tds service method-input-action: DeleteCertificates http://www.onvif.org/ver10/device/wsdl/DeleteCertificates
int __tds__DeleteCertificates(_tds__DeleteCertificates* tds__DeleteCertificates,
    _tds__DeleteCertificatesResponse& tds__DeleteCertificatesResponse);
//gsoap tds service method-input-action: DeleteDot1XConfiguration http://www.onvif.org/ver10/device/wsdl/DeleteDot1XConfiguration
int __tds__DeleteDot1XConfiguration(_tds__DeleteDot1XConfiguration* tds__DeleteDot1XConfiguration,
    _tds__DeleteDot1XConfigurationResponse& tds__DeleteDot1XConfigurationResponse);
//gsoap tds service method-input-action: DeleteGeoLocation http://www.onvif.org/ver10/device/wsdl/DeleteGeoLocation
int __tds__DeleteGeoLocation(_tds__DeleteGeoLocation* tds__DeleteGeoLocation,
    _tds__DeleteGeoLocationResponse& tds__DeleteGeoLocationResponse);
//gsoap tds service method-input-action: DeleteStorageConfiguration http://www.onvif.org/ver10/device/wsdl/DeleteStorageConfiguration
int __tds__DeleteStorageConfiguration(_tds__DeleteStorageConfiguration* tds__DeleteStorageConfiguration,
    _tds__DeleteStorageConfigurationResponse& tds__DeleteStorageConfigurationResponse);
//gsoap tds service method-input-action: DeleteUsers http://www.onvif.org/ver10/device/wsdl/DeleteUsers
int __tds__DeleteUsers(_tds__DeleteUsers* tds__DeleteUsers, _tds__DeleteUsersResponse& tds__DeleteUsersResponse);
//gsoap tds service method-input-action: GetAccessPolicy http://www.onvif.org/ver10/device/wsdl/GetAccessPolicy
int __tds__GetAccessPolicy(_tds__GetAccessPolicy* tds__GetAccessPolicy,
    _tds__GetAccessPolicyResponse& tds__GetAccessPolicyResponse);
//gsoap tds service method-input-action: GetCACertificates http://www.onvif.org/ver10/device/wsdl/GetCACertificates
int __tds__GetCACertificates(_tds__GetCACertificates* tds__GetCACertificates,
    _tds__GetCACertificatesResponse& tds__GetCACertificatesResponse);
//gsoap tds service method-input-action: GetCertificateInformation http://www.onvif.org/ver10/device/wsdl/GetCertificateInformation
int __tds__GetCertificateInformation(_tds__GetCertificateInformation* tds__GetCertificateInformation,
    _tds__GetCertificateInformationResponse& tds__GetCertificateInformationResponse);
//gsoap tds service method-input-action: GetCertificates http://www.onvif.org/ver10/device/wsdl/GetCertificates
int __tds__GetCertificates(_tds__GetCertificates* tds__GetCertificates,
    _tds__GetCertificatesResponse& tds__GetCertificatesResponse);
//gsoap tds service method-input-action: GetCertificatesStatus http://www.onvif.org/ver10/device/wsdl/GetCertificatesStatus
int __tds__GetCertificatesStatus(_tds__GetCertificatesStatus* tds__GetCertificatesStatus,
    _tds__GetCertificatesStatusResponse& tds__GetCertificatesStatusResponse);
//gsoap tds service method-input-action: GetClientCertificateMode http://www.onvif.org/ver10/device/wsdl/GetClientCertificateMode
int __tds__GetClientCertificateMode(_tds__GetClientCertificateMode* tds__GetClientCertificateMode,
    _tds__GetClientCertificateModeResponse& tds__GetClientCertificateModeResponse);
//gsoap tds service method-input-action: GetDNS http://www.onvif.org/ver10/device/wsdl/GetDNS
int __tds__GetDNS(_tds__GetDNS* tds__GetDNS, _tds__GetDNSResponse& tds__GetDNSResponse);
//gsoap tds service method-input-action: GetDPAddresses http://www.onvif.org/ver10/device/wsdl/GetDPAddresses
int __tds__GetDPAddresses(_tds__GetDPAddresses* tds__GetDPAddresses,
    _tds__GetDPAddressesResponse& tds__GetDPAddressesResponse);
//gsoap tds service method-input-action: GetDiscoveryMode http://www.onvif.org/ver10/device/wsdl/GetDiscoveryMode
int __tds__GetDiscoveryMode(_tds__GetDiscoveryMode* tds__GetDiscoveryMode,
    _tds__GetDiscoveryModeResponse& tds__GetDiscoveryModeResponse);
//gsoap tds service method-input-action: GetDot11Capabilities http://www.onvif.org/ver10/device/wsdl/GetDot11Capabilities
int __tds__GetDot11Capabilities(_tds__GetDot11Capabilities* tds__GetDot11Capabilities,
    _tds__GetDot11CapabilitiesResponse& tds__GetDot11CapabilitiesResponse);
//gsoap tds service method-input-action: GetDot11Status http://www.onvif.org/ver10/device/wsdl/GetDot11Status
int __tds__GetDot11Status(_tds__GetDot11Status* tds__GetDot11Status,
    _tds__GetDot11StatusResponse& tds__GetDot11StatusResponse);
//gsoap tds service method-input-action: GetDot1XConfiguration http://www.onvif.org/ver10/device/wsdl/GetDot1XConfiguration
int __tds__GetDot1XConfiguration(_tds__GetDot1XConfiguration* tds__GetDot1XConfiguration,
    _tds__GetDot1XConfigurationResponse& tds__GetDot1XConfigurationResponse);
//gsoap tds service method-input-action: GetDot1XConfigurations http://www.onvif.org/ver10/device/wsdl/GetDot1XConfigurations
int __tds__GetDot1XConfigurations(_tds__GetDot1XConfigurations* tds__GetDot1XConfigurations,
    _tds__GetDot1XConfigurationsResponse& tds__GetDot1XConfigurationsResponse);
//gsoap tds service method-input-action: GetDynamicDNS http://www.onvif.org/ver10/device/wsdl/GetDynamicDNS
int __tds__GetDynamicDNS(_tds__GetDynamicDNS* tds__GetDynamicDNS,
    _tds__GetDynamicDNSResponse& tds__GetDynamicDNSResponse);
//gsoap tds service method-input-action: GetEndpointReference http://www.onvif.org/ver10/device/wsdl/GetEndpointReference
int __tds__GetEndpointReference(_tds__GetEndpointReference* tds__GetEndpointReference,
    _tds__GetEndpointReferenceResponse& tds__GetEndpointReferenceResponse);
//gsoap tds service method-input-action: GetGeoLocation http://www.onvif.org/ver10/device/wsdl/GetGeoLocation
int __tds__GetGeoLocation(_tds__GetGeoLocation* tds__GetGeoLocation,
    _tds__GetGeoLocationResponse& tds__GetGeoLocationResponse);
//gsoap tds service method-input-action: GetIPAddressFilter http://www.onvif.org/ver10/device/wsdl/GetIPAddressFilter
int __tds__GetIPAddressFilter(_tds__GetIPAddressFilter* tds__GetIPAddressFilter,
    _tds__GetIPAddressFilterResponse& tds__GetIPAddressFilterResponse);
//gsoap tds service method-input-action: GetNTP http://www.onvif.org/ver10/device/wsdl/GetNTP
int __tds__GetNTP(_tds__GetNTP* tds__GetNTP, _tds__GetNTPResponse& tds__GetNTPResponse);
//gsoap tds service method-input-action: GetNetworkDefaultGateway http://www.onvif.org/ver10/device/wsdl/GetNetworkDefaultGateway
int __tds__GetNetworkDefaultGateway(_tds__GetNetworkDefaultGateway* tds__GetNetworkDefaultGateway,
    _tds__GetNetworkDefaultGatewayResponse& tds__GetNetworkDefaultGatewayResponse);
//gsoap tds service method-input-action: GetPkcs10Request http://www.onvif.org/ver10/device/wsdl/GetPkcs10Request
int __tds__GetPkcs10Request(_tds__GetPkcs10Request* tds__GetPkcs10Request,
    _tds__GetPkcs10RequestResponse& tds__GetPkcs10RequestResponse);
//gsoap tds service method-input-action: GetRelayOutputs http://www.onvif.org/ver10/device/wsdl/GetRelayOutputs
int __tds__GetRelayOutputs(_tds__GetRelayOutputs* tds__GetRelayOutputs,
    _tds__GetRelayOutputsResponse& tds__GetRelayOutputsResponse);
//gsoap tds service method-input-action: GetRemoteDiscoveryMode http://www.onvif.org/ver10/device/wsdl/GetRemoteDiscoveryMode
int __tds__GetRemoteDiscoveryMode(_tds__GetRemoteDiscoveryMode* tds__GetRemoteDiscoveryMode,
    _tds__GetRemoteDiscoveryModeResponse& tds__GetRemoteDiscoveryModeResponse);
//gsoap tds service method-input-action: GetRemoteUser http://www.onvif.org/ver10/device/wsdl/GetRemoteUser
int __tds__GetRemoteUser(_tds__GetRemoteUser* tds__GetRemoteUser,
    _tds__GetRemoteUserResponse& tds__GetRemoteUserResponse);
//gsoap tds service method-input-action: GetStorageConfiguration http://www.onvif.org/ver10/device/wsdl/GetStorageConfiguration
int __tds__GetStorageConfiguration(_tds__GetStorageConfiguration* tds__GetStorageConfiguration,
    _tds__GetStorageConfigurationResponse& tds__GetStorageConfigurationResponse);
//gsoap tds service method-input-action: GetStorageConfigurations http://www.onvif.org/ver10/device/wsdl/GetStorageConfigurations
int __tds__GetStorageConfigurations(_tds__GetStorageConfigurations* tds__GetStorageConfigurations,
    _tds__GetStorageConfigurationsResponse& tds__GetStorageConfigurationsResponse);
//gsoap tds service method-input-action: GetSystemBackup http://www.onvif.org/ver10/device/wsdl/GetSystemBackup
int __tds__GetSystemBackup(_tds__GetSystemBackup* tds__GetSystemBackup,
    _tds__GetSystemBackupResponse& tds__GetSystemBackupResponse);
//gsoap tds service method-input-action: GetSystemLog http://www.onvif.org/ver10/device/wsdl/GetSystemLog
int __tds__GetSystemLog(_tds__GetSystemLog* tds__GetSystemLog, _tds__GetSystemLogResponse& tds__GetSystemLogResponse);
//gsoap tds service method-input-action: GetSystemSupportInformation http://www.onvif.org/ver10/device/wsdl/GetSystemSupportInformation
int __tds__GetSystemSupportInformation(_tds__GetSystemSupportInformation* tds__GetSystemSupportInformation,
    _tds__GetSystemSupportInformationResponse& tds__GetSystemSupportInformationResponse);
//gsoap tds service method-input-action: GetSystemUris http://www.onvif.org/ver10/device/wsdl/GetSystemUris
int __tds__GetSystemUris(_tds__GetSystemUris* tds__GetSystemUris,
    _tds__GetSystemUrisResponse& tds__GetSystemUrisResponse);
//gsoap tds service method-input-action: GetWsdlUrl http://www.onvif.org/ver10/device/wsdl/GetWsdlUrl
int __tds__GetWsdlUrl(_tds__GetWsdlUrl* tds__GetWsdlUrl, _tds__GetWsdlUrlResponse& tds__GetWsdlUrlResponse);
//gsoap tds service method-input-action: GetZeroConfiguration http://www.onvif.org/ver10/device/wsdl/GetZeroConfiguration
int __tds__GetZeroConfiguration(_tds__GetZeroConfiguration* tds__GetZeroConfiguration,
    _tds__GetZeroConfigurationResponse& tds__GetZeroConfigurationResponse);
//gsoap tds service method-input-action: LoadCACertificates http://www.onvif.org/ver10/device/wsdl/LoadCACertificates
int __tds__LoadCACertificates(_tds__LoadCACertificates* tds__LoadCACertificates,
    _tds__LoadCACertificatesResponse& tds__LoadCACertificatesResponse);
//gsoap tds service method-input-action: LoadCertificateWithPrivateKey http://www.onvif.org/ver10/device/wsdl/LoadCertificateWithPrivateKey
int __tds__LoadCertificateWithPrivateKey(_tds__LoadCertificateWithPrivateKey* tds__LoadCertificateWithPrivateKey,
    _tds__LoadCertificateWithPrivateKeyResponse& tds__LoadCertificateWithPrivateKeyResponse);
//gsoap tds service method-input-action: LoadCertificates http://www.onvif.org/ver10/device/wsdl/LoadCertificates
int __tds__LoadCertificates(_tds__LoadCertificates* tds__LoadCertificates,
    _tds__LoadCertificatesResponse& tds__LoadCertificatesResponse);
//gsoap tds service method-input-action: RemoveIPAddressFilter http://www.onvif.org/ver10/device/wsdl/RemoveIPAddressFilter
int __tds__RemoveIPAddressFilter(_tds__RemoveIPAddressFilter* tds__RemoveIPAddressFilter,
    _tds__RemoveIPAddressFilterResponse& tds__RemoveIPAddressFilterResponse);
//gsoap tds service method-input-action: RemoveScopes http://www.onvif.org/ver10/device/wsdl/RemoveScopes
int __tds__RemoveScopes(_tds__RemoveScopes* tds__RemoveScopes, _tds__RemoveScopesResponse& tds__RemoveScopesResponse);
//gsoap tds service method-input-action: RestoreSystem http://www.onvif.org/ver10/device/wsdl/RestoreSystem
int __tds__RestoreSystem(_tds__RestoreSystem* tds__RestoreSystem,
    _tds__RestoreSystemResponse& tds__RestoreSystemResponse);
//gsoap tds service method-input-action: ScanAvailableDot11Networks http://www.onvif.org/ver10/device/wsdl/ScanAvailableDot11Networks
int __tds__ScanAvailableDot11Networks(_tds__ScanAvailableDot11Networks* tds__ScanAvailableDot11Networks,
    _tds__ScanAvailableDot11NetworksResponse& tds__ScanAvailableDot11NetworksResponse);
//gsoap tds service method-input-action: SendAuxiliaryCommand http://www.onvif.org/ver10/device/wsdl/SendAuxiliaryCommand
int __tds__SendAuxiliaryCommand(_tds__SendAuxiliaryCommand* tds__SendAuxiliaryCommand,
    _tds__SendAuxiliaryCommandResponse& tds__SendAuxiliaryCommandResponse);
//gsoap tds service method-input-action: SetAccessPolicy http://www.onvif.org/ver10/device/wsdl/SetAccessPolicy
int __tds__SetAccessPolicy(_tds__SetAccessPolicy* tds__SetAccessPolicy,
    _tds__SetAccessPolicyResponse& tds__SetAccessPolicyResponse);
//gsoap tds service method-input-action: SetCertificatesStatus http://www.onvif.org/ver10/device/wsdl/SetCertificatesStatus
int __tds__SetCertificatesStatus(_tds__SetCertificatesStatus* tds__SetCertificatesStatus,
    _tds__SetCertificatesStatusResponse& tds__SetCertificatesStatusResponse);
//gsoap tds service method-input-action: SetClientCertificateMode http://www.onvif.org/ver10/device/wsdl/SetClientCertificateMode
int __tds__SetClientCertificateMode(_tds__SetClientCertificateMode* tds__SetClientCertificateMode,
    _tds__SetClientCertificateModeResponse& tds__SetClientCertificateModeResponse);
//gsoap tds service method-input-action: SetDNS http://www.onvif.org/ver10/device/wsdl/SetDNS
int __tds__SetDNS(_tds__SetDNS* tds__SetDNS, _tds__SetDNSResponse& tds__SetDNSResponse);
//gsoap tds service method-input-action: SetDPAddresses http://www.onvif.org/ver10/device/wsdl/SetDPAddresses
int __tds__SetDPAddresses(_tds__SetDPAddresses* tds__SetDPAddresses,
    _tds__SetDPAddressesResponse& tds__SetDPAddressesResponse);
//gsoap tds service method-input-action: SetDiscoveryMode http://www.onvif.org/ver10/device/wsdl/SetDiscoveryMode
int __tds__SetDiscoveryMode(_tds__SetDiscoveryMode* tds__SetDiscoveryMode,
    _tds__SetDiscoveryModeResponse& tds__SetDiscoveryModeResponse);
//gsoap tds service method-input-action: SetDot1XConfiguration http://www.onvif.org/ver10/device/wsdl/SetDot1XConfiguration
int __tds__SetDot1XConfiguration(_tds__SetDot1XConfiguration* tds__SetDot1XConfiguration,
    _tds__SetDot1XConfigurationResponse& tds__SetDot1XConfigurationResponse);
//gsoap tds service method-input-action: SetDynamicDNS http://www.onvif.org/ver10/device/wsdl/SetDynamicDNS
int __tds__SetDynamicDNS(_tds__SetDynamicDNS* tds__SetDynamicDNS,
    _tds__SetDynamicDNSResponse& tds__SetDynamicDNSResponse);
//gsoap tds service method-input-action: SetGeoLocation http://www.onvif.org/ver10/device/wsdl/SetGeoLocation
int __tds__SetGeoLocation(_tds__SetGeoLocation* tds__SetGeoLocation,
    _tds__SetGeoLocationResponse& tds__SetGeoLocationResponse);
//gsoap tds service method-input-action: SetHostname http://www.onvif.org/ver10/device/wsdl/SetHostname
int __tds__SetHostname(_tds__SetHostname* tds__SetHostname, _tds__SetHostnameResponse& tds__SetHostnameResponse);
//gsoap tds service method-input-action: SetHostnameFromDHCP http://www.onvif.org/ver10/device/wsdl/SetHostnameFromDHCP
int __tds__SetHostnameFromDHCP(_tds__SetHostnameFromDHCP* tds__SetHostnameFromDHCP,
    _tds__SetHostnameFromDHCPResponse& tds__SetHostnameFromDHCPResponse);
//gsoap tds service method-input-action: SetIPAddressFilter http://www.onvif.org/ver10/device/wsdl/SetIPAddressFilter
int __tds__SetIPAddressFilter(_tds__SetIPAddressFilter* tds__SetIPAddressFilter,
    _tds__SetIPAddressFilterResponse& tds__SetIPAddressFilterResponse);
//gsoap tds service method-input-action: SetNTP http://www.onvif.org/ver10/device/wsdl/SetNTP
int __tds__SetNTP(_tds__SetNTP* tds__SetNTP, _tds__SetNTPResponse& tds__SetNTPResponse);
//gsoap tds service method-input-action: SetNetworkDefaultGateway http://www.onvif.org/ver10/device/wsdl/SetNetworkDefaultGateway
int __tds__SetNetworkDefaultGateway(_tds__SetNetworkDefaultGateway* tds__SetNetworkDefaultGateway,
    _tds__SetNetworkDefaultGatewayResponse& tds__SetNetworkDefaultGatewayResponse);
//gsoap tds service method-input-action: SetNetworkInterfaces http://www.onvif.org/ver10/device/wsdl/SetNetworkInterfaces
int __tds__SetNetworkInterfaces(_tds__SetNetworkInterfaces* tds__SetNetworkInterfaces,
    _tds__SetNetworkInterfacesResponse& tds__SetNetworkInterfacesResponse);
//gsoap tds service method-input-action: SetNetworkProtocols http://www.onvif.org/ver10/device/wsdl/SetNetworkProtocols
int __tds__SetNetworkProtocols(_tds__SetNetworkProtocols* tds__SetNetworkProtocols,
    _tds__SetNetworkProtocolsResponse& tds__SetNetworkProtocolsResponse);
//gsoap tds service method-input-action: SetRelayOutputSettings http://www.onvif.org/ver10/device/wsdl/SetRelayOutputSettings
int __tds__SetRelayOutputSettings(_tds__SetRelayOutputSettings* tds__SetRelayOutputSettings,
    _tds__SetRelayOutputSettingsResponse& tds__SetRelayOutputSettingsResponse);
//gsoap tds service method-input-action: SetRelayOutputState http://www.onvif.org/ver10/device/wsdl/SetRelayOutputState
int __tds__SetRelayOutputState(_tds__SetRelayOutputState* tds__SetRelayOutputState,
    _tds__SetRelayOutputStateResponse& tds__SetRelayOutputStateResponse);
//gsoap tds service method-input-action: SetRemoteDiscoveryMode http://www.onvif.org/ver10/device/wsdl/SetRemoteDiscoveryMode
int __tds__SetRemoteDiscoveryMode(_tds__SetRemoteDiscoveryMode* tds__SetRemoteDiscoveryMode,
    _tds__SetRemoteDiscoveryModeResponse& tds__SetRemoteDiscoveryModeResponse);
//gsoap tds service method-input-action: SetRemoteUser http://www.onvif.org/ver10/device/wsdl/SetRemoteUser
int __tds__SetRemoteUser(_tds__SetRemoteUser* tds__SetRemoteUser,
    _tds__SetRemoteUserResponse& tds__SetRemoteUserResponse);
//gsoap tds service method-input-action: SetScopes http://www.onvif.org/ver10/device/wsdl/SetScopes
int __tds__SetScopes(_tds__SetScopes* tds__SetScopes, _tds__SetScopesResponse& tds__SetScopesResponse);
//gsoap tds service method-input-action: SetStorageConfiguration http://www.onvif.org/ver10/device/wsdl/SetStorageConfiguration
int __tds__SetStorageConfiguration(_tds__SetStorageConfiguration* tds__SetStorageConfiguration,
    _tds__SetStorageConfigurationResponse& tds__SetStorageConfigurationResponse);
//gsoap tds service method-input-action: SetSystemDateAndTime http://www.onvif.org/ver10/device/wsdl/SetSystemDateAndTime
int __tds__SetSystemDateAndTime(_tds__SetSystemDateAndTime* tds__SetSystemDateAndTime,
    _tds__SetSystemDateAndTimeResponse& tds__SetSystemDateAndTimeResponse);
//gsoap tds service method-input-action: SetSystemFactoryDefault http://www.onvif.org/ver10/device/wsdl/SetSystemFactoryDefault
int __tds__SetSystemFactoryDefault(_tds__SetSystemFactoryDefault* tds__SetSystemFactoryDefault,
    _tds__SetSystemFactoryDefaultResponse& tds__SetSystemFactoryDefaultResponse);
//gsoap tds service method-input-action: SetZeroConfiguration http://www.onvif.org/ver10/device/wsdl/SetZeroConfiguration
int __tds__SetZeroConfiguration(_tds__SetZeroConfiguration* tds__SetZeroConfiguration,
    _tds__SetZeroConfigurationResponse& tds__SetZeroConfigurationResponse);
//gsoap tds service method-input-action: StartFirmwareUpgrade http://www.onvif.org/ver10/device/wsdl/StartFirmwareUpgrade
int __tds__StartFirmwareUpgrade(_tds__StartFirmwareUpgrade* tds__StartFirmwareUpgrade,
    _tds__StartFirmwareUpgradeResponse& tds__StartFirmwareUpgradeResponse);
//gsoap tds service method-input-action: StartSystemRestore http://www.onvif.org/ver10/device/wsdl/StartSystemRestore
int __tds__StartSystemRestore(_tds__StartSystemRestore* tds__StartSystemRestore,
    _tds__StartSystemRestoreResponse& tds__StartSystemRestoreResponse);
//gsoap tds service method-input-action: SystemReboot http://www.onvif.org/ver10/device/wsdl/SystemReboot
int __tds__SystemReboot(_tds__SystemReboot* tds__SystemReboot, _tds__SystemRebootResponse& tds__SystemRebootResponse);
//gsoap tds service method-input-action: UpgradeSystemFirmware http://www.onvif.org/ver10/device/wsdl/UpgradeSystemFirmware
int __tds__UpgradeSystemFirmware(_tds__UpgradeSystemFirmware* tds__UpgradeSystemFirmware,
    _tds__UpgradeSystemFirmwareResponse& tds__UpgradeSystemFirmwareResponse);
