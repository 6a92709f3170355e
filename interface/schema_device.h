// Part of schema.h: types of the device service.

// Capabilities as GetCapabilities gives them

enum tt__CapabilityCategory
{
    tt__CapabilityCategory__All,
    tt__CapabilityCategory__Analytics,
    tt__CapabilityCategory__Device,
    tt__CapabilityCategory__Events,
    tt__CapabilityCategory__Imaging,
    tt__CapabilityCategory__Media,
    tt__CapabilityCategory__PTZ
};

typedef tt__Unused tt__ImagingCapabilities, tt__IOCapabilities, tt__PTZCapabilities;
typedef tt__Unused tt__CapabilitiesExtension, tt__DeviceCapabilitiesExtension, tt__MediaCapabilitiesExtension,
    tt__NetworkCapabilitiesExtension, tt__RealTimeStreamingCapabilitiesExtension, tt__SecurityCapabilitiesExtension,
    tt__SystemCapabilitiesExtension;

class tt__AnalyticsCapabilities
{ public:
    xsd__anyURI                 XAddr                  1;
    bool                        RuleSupport            1;
    bool                        AnalyticsModuleSupport 1;
    std::vector<xsd__anyType>   __any                  0;
    @ xsd__anyAttribute         __anyAttribute;
};

class tt__NetworkCapabilities
{ public:
    bool*                             IPFilter          0;
    bool*                             ZeroConfiguration 0;
    bool*                             IPVersion6        0;
    bool*                             DynDNS            0;
    tt__NetworkCapabilitiesExtension* Extension         0;
    @ xsd__anyAttribute               __anyAttribute;
};

class tt__SystemCapabilities
{ public:
    bool                             DiscoveryResolve  1;
    bool                             DiscoveryBye      1;
    bool                             RemoteDiscovery   1;
    bool                             SystemBackup      1;
    bool                             SystemLogging     1;
    bool                             FirmwareUpgrade   1;
    std::vector<tt__OnvifVersion*>   SupportedVersions 1;
    tt__SystemCapabilitiesExtension* Extension         0;
    @ xsd__anyAttribute              __anyAttribute;
};

class tt__SecurityCapabilities
{ public:
    bool                               TLS1_x002e1          1;
    bool                               TLS1_x002e2          1;
    bool                               OnboardKeyGeneration 1;
    bool                               AccessPolicyConfig   1;
    bool                               X_x002e509Token      1;
    bool                               SAMLToken            1;
    bool                               KerberosToken        1;
    bool                               RELToken             1;
    std::vector<xsd__anyType>          __any                0;
    tt__SecurityCapabilitiesExtension* Extension            0;
    @ xsd__anyAttribute                __anyAttribute;
};

class tt__DeviceCapabilities
{ public:
    xsd__anyURI                      XAddr     1;
    tt__NetworkCapabilities*         Network   0;
    tt__SystemCapabilities*          System    0;
    tt__IOCapabilities*              IO        0;
    tt__SecurityCapabilities*        Security  0;
    tt__DeviceCapabilitiesExtension* Extension 0;
    @ xsd__anyAttribute              __anyAttribute;
};

class tt__EventCapabilities
{ public:
    xsd__anyURI               XAddr                                         1;
    bool                      WSSubscriptionPolicySupport                   1;
    bool                      WSPullPointSupport                            1;
    bool                      WSPausableSubscriptionManagerInterfaceSupport 1;
    std::vector<xsd__anyType> __any                                         0;
    @ xsd__anyAttribute       __anyAttribute;
};

class tt__RealTimeStreamingCapabilities
{ public:
    bool*                                       RTPMulticast                 0;
    bool*                                       RTP_USCORETCP                0;
    bool*                                       RTP_USCORERTSP_USCORETCP     0;
    tt__RealTimeStreamingCapabilitiesExtension* Extension                    0;
    @ xsd__anyAttribute                         __anyAttribute;
};

class tt__MediaCapabilities
{ public:
    xsd__anyURI                        XAddr                 1;
    tt__RealTimeStreamingCapabilities* StreamingCapabilities 1;
    std::vector<xsd__anyType>          __any                 0;
    tt__MediaCapabilitiesExtension*    Extension             0;
    @ xsd__anyAttribute                __anyAttribute;
};

/// What GetCapabilities answers.
class tt__Capabilities
{ public:
    tt__AnalyticsCapabilities* Analytics 0;
    tt__DeviceCapabilities*    Device    0;
    tt__EventCapabilities*     Events    0;
    tt__ImagingCapabilities*   Imaging   0;
    tt__MediaCapabilities*     Media     0;
    tt__PTZCapabilities*       PTZ       0;
    tt__CapabilitiesExtension* Extension 0;
    @ xsd__anyAttribute        __anyAttribute;
};

// Scopes, time, users

enum tt__ScopeDefinition
{
    tt__ScopeDefinition__Fixed,
    tt__ScopeDefinition__Configurable
};

class tt__Scope
{ public:
    enum tt__ScopeDefinition ScopeDef  1;
    xsd__anyURI              ScopeItem 1;
};

enum tt__SetDateTimeType
{
    tt__SetDateTimeType__Manual,
    tt__SetDateTimeType__NTP
};

class tt__TimeZone
{ public:
    xsd__token TZ 1;
};

class tt__Time
{ public:
    int Hour   1;
    int Minute 1;
    int Second 1;
};

class tt__Date
{ public:
    int Year  1;
    int Month 1;
    int Day   1;
};

class tt__DateTime
{ public:
    tt__Time* Time 1;
    tt__Date* Date 1;
};

typedef tt__Unused tt__SystemDateTimeExtension;

class tt__SystemDateTime
{ public:
    enum tt__SetDateTimeType     DateTimeType    1;
    bool                         DaylightSavings 1;
    tt__TimeZone*                TimeZone        0;
    tt__DateTime*                UTCDateTime     0;
    tt__DateTime*                LocalDateTime   0;
    tt__SystemDateTimeExtension* Extension       0;
    @ xsd__anyAttribute          __anyAttribute;
};

enum tt__UserLevel
{
    tt__UserLevel__Administrator,
    tt__UserLevel__Operator,
    tt__UserLevel__User,
    tt__UserLevel__Anonymous,
    tt__UserLevel__Extended
};

typedef tt__Unused tt__UserExtension;

class tt__User
{ public:
    std::string         Username  1;
    std::string*        Password  0;
    enum tt__UserLevel  UserLevel 1;
    tt__UserExtension*  Extension 0;
    @ xsd__anyAttribute __anyAttribute;
};

// Network

typedef xsd__token tt__HwAddress;
typedef xsd__token tt__IPv4Address;
typedef xsd__token tt__IPv6Address;
typedef int        tt__IANA_IfTypes;

typedef tt__Unused tt__IPv6NetworkInterface;
typedef tt__Unused tt__HostnameInformationExtension, tt__NetworkInterfaceExtension, tt__NetworkProtocolExtension;

class tt__HostnameInformation
{ public:
    bool                              FromDHCP  1;
    xsd__token*                       Name      0;
    tt__HostnameInformationExtension* Extension 0;
    @ xsd__anyAttribute               __anyAttribute;
};

enum tt__NetworkProtocolType
{
    tt__NetworkProtocolType__HTTP,
    tt__NetworkProtocolType__HTTPS,
    tt__NetworkProtocolType__RTSP
};

class tt__NetworkProtocol
{ public:
    enum tt__NetworkProtocolType  Name      1;
    bool                          Enabled   1;
    std::vector<int>              Port      1;
    tt__NetworkProtocolExtension* Extension 0;
    @ xsd__anyAttribute           __anyAttribute;
};

enum tt__Duplex
{
    tt__Duplex__Full,
    tt__Duplex__Half
};

class tt__NetworkInterfaceConnectionSetting
{ public:
    bool            AutoNegotiation 1;
    int             Speed           1;
    enum tt__Duplex Duplex          1;
};

class tt__NetworkInterfaceLink
{ public:
    tt__NetworkInterfaceConnectionSetting* AdminSettings 1;
    tt__NetworkInterfaceConnectionSetting* OperSettings  1;
    tt__IANA_IfTypes                       InterfaceType 1;
};

class tt__NetworkInterfaceInfo
{ public:
    std::string*  Name      0;
    tt__HwAddress HwAddress 1;
    int*          MTU       0;
};

class tt__PrefixedIPv4Address
{ public:
    tt__IPv4Address Address      1;
    int             PrefixLength 1;
};

class tt__IPv4Configuration
{ public:
    std::vector<tt__PrefixedIPv4Address*> Manual    0;
    tt__PrefixedIPv4Address*              LinkLocal 0;
    tt__PrefixedIPv4Address*              FromDHCP  0;
    bool                                  DHCP      1;
    std::vector<xsd__anyType>             __any     0;
    @ xsd__anyAttribute                   __anyAttribute;
};

class tt__IPv4NetworkInterface
{ public:
    bool                   Enabled 1;
    tt__IPv4Configuration* Config  1;
};

class tt__NetworkInterface : public tt__DeviceEntity
{ public:
    bool                           Enabled   1;
    tt__NetworkInterfaceInfo*      Info      0;
    tt__NetworkInterfaceLink*      Link      0;
    tt__IPv4NetworkInterface*      IPv4      0;
    tt__IPv6NetworkInterface*      IPv6      0;
    tt__NetworkInterfaceExtension* Extension 0;
    @ xsd__anyAttribute            __anyAttribute;
};
