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

class tds__SecurityCapabilities
{ public:
    @ bool* TLS1_x002e0          0;
    @ bool* TLS1_x002e1          0;
    @ bool* TLS1_x002e2          0;
    @ bool* OnboardKeyGeneration 0;
    @ bool* AccessPolicyConfig   0;
    @ bool* DefaultAccessPolicy  0;
    @ bool* Dot1X                0;
    @ bool* RemoteUserHandling   0;
    @ bool* X_x002e509Token      0;
    @ bool* SAMLToken            0;
    @ bool* KerberosToken        0;
    @ bool* UsernameToken        0;
    @ bool* HttpDigest           0;
};

/// The schema requires Network and System as well; this device configures neither.
class tds__DeviceServiceCapabilities
{ public:
    tds__SecurityCapabilities* Security 1;
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
};

// Messages

class _tds__GetServices
{ public:
    bool IncludeCapability 1;
};

class _tds__GetServicesResponse
{ public:
    std::vector<tds__Service*> Service 1;
};

class _tds__GetServiceCapabilitiesResponse
{ public:
    tds__DeviceServiceCapabilities* Capabilities 1;
};

class _tds__GetCapabilitiesResponse
{ public:
    tt__Capabilities* Capabilities 1;
};

class _tds__GetDeviceInformationResponse
{ public:
    std::string Manufacturer    1;
    std::string Model           1;
    std::string FirmwareVersion 1;
    std::string SerialNumber    1;
    std::string HardwareId      1;
};

class _tds__GetScopesResponse
{ public:
    std::vector<tt__Scope*> Scopes 1;
};

class _tds__GetSystemDateAndTimeResponse
{ public:
    tt__SystemDateTime* SystemDateAndTime 1;
};

class _tds__GetHostnameResponse
{ public:
    tt__HostnameInformation* HostnameInformation 1;
};

class _tds__GetNetworkInterfacesResponse
{ public:
    std::vector<tt__NetworkInterface*> NetworkInterfaces 1;
};

class _tds__GetNetworkProtocolsResponse
{ public:
    std::vector<tt__NetworkProtocol*> NetworkProtocols 0;
};

class _tds__GetUsersResponse
{ public:
    std::vector<tt__User*> User 0;
};
