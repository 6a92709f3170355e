// Part of schema.h: types of the device service.

// Capabilities as GetCapabilities gives them

class tt__SystemCapabilities
{ public:
    bool                           DiscoveryResolve  1;
    bool                           DiscoveryBye      1;
    bool                           RemoteDiscovery   1;
    bool                           SystemBackup      1;
    bool                           SystemLogging     1;
    bool                           FirmwareUpgrade   1;
    std::vector<tt__OnvifVersion*> SupportedVersions 1;
};

class tt__DeviceCapabilities
{ public:
    xsd__anyURI             XAddr  1;
    tt__SystemCapabilities* System 0;
};

class tt__EventCapabilities
{ public:
    xsd__anyURI XAddr                                         1;
    bool        WSSubscriptionPolicySupport                   1;
    bool        WSPullPointSupport                            1;
    bool        WSPausableSubscriptionManagerInterfaceSupport 1;
};

class tt__RealTimeStreamingCapabilities
{ public:
    bool* RTPMulticast             0;
    bool* RTP_USCORETCP            0;
    bool* RTP_USCORERTSP_USCORETCP 0;
};

class tt__MediaCapabilities
{ public:
    xsd__anyURI                        XAddr                 1;
    tt__RealTimeStreamingCapabilities* StreamingCapabilities 1;
};

/// What GetCapabilities answers.
class tt__Capabilities
{ public:
    tt__DeviceCapabilities* Device 0;
    tt__EventCapabilities*  Events 0;
    tt__MediaCapabilities*  Media  0;
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

class tt__SystemDateTime
{ public:
    enum tt__SetDateTimeType DateTimeType    1;
    bool                     DaylightSavings 1;
    tt__DateTime*            UTCDateTime     0;
};

enum tt__UserLevel
{
    tt__UserLevel__Administrator,
    tt__UserLevel__Operator,
    tt__UserLevel__User,
    tt__UserLevel__Anonymous,
    tt__UserLevel__Extended
};

/// The password is never written.
class tt__User
{ public:
    std::string        Username  1;
    std::string*       Password  0;
    enum tt__UserLevel UserLevel 1;
};

// Network

typedef xsd__token tt__HwAddress;
typedef xsd__token tt__IPv4Address;

class tt__HostnameInformation
{ public:
    bool        FromDHCP 1;
    xsd__token* Name     0;
};

enum tt__NetworkProtocolType
{
    tt__NetworkProtocolType__HTTP,
    tt__NetworkProtocolType__HTTPS,
    tt__NetworkProtocolType__RTSP
};

class tt__NetworkProtocol
{ public:
    enum tt__NetworkProtocolType Name    1;
    bool                         Enabled 1;
    std::vector<int>             Port    1;
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
    tt__PrefixedIPv4Address* FromDHCP 0;
    bool                     DHCP     1;
};

class tt__IPv4NetworkInterface
{ public:
    bool                   Enabled 1;
    tt__IPv4Configuration* Config  1;
};

class tt__NetworkInterface : public tt__DeviceEntity
{ public:
    bool                      Enabled 1;
    tt__NetworkInterfaceInfo* Info    0;
    tt__IPv4NetworkInterface* IPv4    0;
};
