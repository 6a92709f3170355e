// Part of schema.h: sources, configurations, options and profiles of the media services.

typedef tt__Unused tt__ImagingSettings, tt__PTZConfiguration;
typedef tt__Unused tt__AudioDecoderConfiguration, tt__AudioEncoder2Configuration, tt__AudioEncoderConfiguration,
    tt__AudioOutputConfiguration, tt__AudioSourceConfiguration;
typedef tt__Unused tt__AnalyticsEngineConfigurationExtension, tt__MetadataConfigurationExtension,
    tt__MetadataConfigurationOptionsExtension, tt__ProfileExtension, tt__PTZStatusFilterOptionsExtension,
    tt__RuleEngineConfigurationExtension, tt__VideoEncoderOptionsExtension, tt__VideoSourceConfigurationExtension,
    tt__VideoSourceConfigurationOptionsExtension, tt__VideoSourceExtension;

class wsnt__FilterType; // events.h

// Video sources

class tt__VideoResolution
{ public:
    int Width  1;
    int Height 1;
};

class tt__VideoSource : public tt__DeviceEntity
{ public:
    float                     Framerate  1;
    tt__VideoResolution*      Resolution 1;
    tt__ImagingSettings*      Imaging    0;
    tt__VideoSourceExtension* Extension  0;
    @ xsd__anyAttribute       __anyAttribute;
};

class tt__VideoSourceConfiguration : public tt__ConfigurationEntity
{ public:
    tt__ReferenceToken                     SourceToken 1;
    tt__IntRectangle*                      Bounds      1;
    std::vector<xsd__anyType>              __any       0;
    tt__VideoSourceConfigurationExtension* Extension   0;
    @ std::string*                         ViewMode    0;
    @ xsd__anyAttribute                    __anyAttribute;
};

class tt__VideoSourceConfigurationOptions
{ public:
    tt__IntRectangleRange*                        BoundsRange                1;
    std::vector<tt__ReferenceToken>               VideoSourceTokensAvailable 1;
    tt__VideoSourceConfigurationOptionsExtension* Extension                  0;
    @ int*                                        MaximumNumberOfProfiles    0;
    @ xsd__anyAttribute                           __anyAttribute;
};

// Multicast

enum tt__IPType
{
    tt__IPType__IPv4,
    tt__IPType__IPv6
};

class tt__IPAddress
{ public:
    enum tt__IPType  Type        1;
    tt__IPv4Address* IPv4Address 0;
    tt__IPv6Address* IPv6Address 0;
};

class tt__MulticastConfiguration
{ public:
    tt__IPAddress*            Address   1;
    int                       Port      1;
    int                       TTL       1;
    bool                      AutoStart 1;
    std::vector<xsd__anyType> __any     0;
    @ xsd__anyAttribute       __anyAttribute;
};

// Video encoders as the ver10 media service describes them

enum tt__VideoEncoding
{
    tt__VideoEncoding__JPEG,
    tt__VideoEncoding__MPEG4,
    tt__VideoEncoding__H264
};

enum tt__Mpeg4Profile
{
    tt__Mpeg4Profile__SP,
    tt__Mpeg4Profile__ASP
};

enum tt__H264Profile
{
    tt__H264Profile__Baseline,
    tt__H264Profile__Main,
    tt__H264Profile__Extended,
    tt__H264Profile__High
};

class tt__VideoRateControl
{ public:
    int FrameRateLimit   1;
    int EncodingInterval 1;
    int BitrateLimit     1;
};

class tt__Mpeg4Configuration
{ public:
    int                   GovLength    1;
    enum tt__Mpeg4Profile Mpeg4Profile 1;
};

class tt__H264Configuration
{ public:
    int                  GovLength   1;
    enum tt__H264Profile H264Profile 1;
};

class tt__VideoEncoderConfiguration : public tt__ConfigurationEntity
{ public:
    enum tt__VideoEncoding      Encoding            1;
    tt__VideoResolution*        Resolution          1;
    float                       Quality             1;
    tt__VideoRateControl*       RateControl         0;
    tt__Mpeg4Configuration*     MPEG4               0;
    tt__H264Configuration*      H264                0;
    tt__MulticastConfiguration* Multicast           1;
    xsd__duration               SessionTimeout      1;
    std::vector<xsd__anyType>   __any               0;
    @ bool*                     GuaranteedFrameRate 0;
    @ xsd__anyAttribute         __anyAttribute;
};

class tt__JpegOptions
{ public:
    std::vector<tt__VideoResolution*> ResolutionsAvailable  1;
    tt__IntRange*                     FrameRateRange        1;
    tt__IntRange*                     EncodingIntervalRange 1;
};

class tt__Mpeg4Options
{ public:
    std::vector<tt__VideoResolution*>  ResolutionsAvailable   1;
    tt__IntRange*                      GovLengthRange         1;
    tt__IntRange*                      FrameRateRange         1;
    tt__IntRange*                      EncodingIntervalRange  1;
    std::vector<enum tt__Mpeg4Profile> Mpeg4ProfilesSupported 1;
};

/// GovLengthRange, FrameRateRange, EncodingIntervalRange: required by the schema, left out by a device that passes streams
/// through and cannot set any of them.
class tt__H264Options
{ public:
    std::vector<tt__VideoResolution*> ResolutionsAvailable  1;
    tt__IntRange*                     GovLengthRange        0;
    tt__IntRange*                     FrameRateRange        0;
    tt__IntRange*                     EncodingIntervalRange 0;
    std::vector<enum tt__H264Profile> H264ProfilesSupported 1;
};

class tt__VideoEncoderConfigurationOptions
{ public:
    tt__IntRange*                     QualityRange                 1;
    tt__JpegOptions*                  JPEG                         0;
    tt__Mpeg4Options*                 MPEG4                        0;
    tt__H264Options*                  H264                         0;
    tt__VideoEncoderOptionsExtension* Extension                    0;
    @ bool*                           GuaranteedFrameRateSupported 0;
    @ xsd__anyAttribute               __anyAttribute;
};

// Video encoders as the Media2 service describes them

class tt__VideoResolution2
{ public:
    int                       Width  1;
    int                       Height 1;
    std::vector<xsd__anyType> __any  0;
    @ xsd__anyAttribute       __anyAttribute;
};

class tt__VideoRateControl2
{ public:
    float                     FrameRateLimit  1;
    int                       BitrateLimit    1;
    std::vector<xsd__anyType> __any           0;
    @ bool*                   ConstantBitRate 0;
    @ xsd__anyAttribute       __anyAttribute;
};

class tt__VideoEncoder2Configuration : public tt__ConfigurationEntity
{ public:
    std::string                 Encoding            1;
    tt__VideoResolution2*       Resolution          1;
    tt__VideoRateControl2*      RateControl         0;
    tt__MulticastConfiguration* Multicast           0;
    float                       Quality             1;
    std::vector<xsd__anyType>   __any               0;
    @ int*                      GovLength           0;
    @ int*                      AnchorFrameDistance 0;
    @ std::string*              Profile             0;
    @ bool*                     GuaranteedFrameRate 0;
    @ xsd__anyAttribute         __anyAttribute;
};

class tt__VideoEncoder2ConfigurationOptions
{ public:
    std::string                        Encoding                     1;
    tt__FloatRange*                    QualityRange                 1;
    std::vector<tt__VideoResolution2*> ResolutionsAvailable         1;
    tt__IntRange*                      BitrateRange                 1;
    std::vector<xsd__anyType>          __any                        0;
    @ tt__IntList*                     GovLengthRange               0;
    @ int*                             MaxAnchorFrameDistance       0;
    @ tt__FloatList*                   FrameRatesSupported          0;
    @ tt__StringAttrList*              ProfilesSupported            0;
    @ bool*                            ConstantBitRateSupported     0;
    @ bool*                            GuaranteedFrameRateSupported 0;
    @ xsd__anyAttribute                __anyAttribute;
};

// Analytics and metadata

class tt__AnalyticsEngineConfiguration
{ public:
    std::vector<tt__Config*>                   AnalyticsModule 0;
    tt__AnalyticsEngineConfigurationExtension* Extension       0;
    @ xsd__anyAttribute                        __anyAttribute;
};

class tt__RuleEngineConfiguration
{ public:
    std::vector<tt__Config*>              Rule      0;
    tt__RuleEngineConfigurationExtension* Extension 0;
    @ xsd__anyAttribute                   __anyAttribute;
};

/// AnalyticsEngineConfiguration, RuleEngineConfiguration: required by the schema, left out because modules and rules are
/// the analytics service's to tell.
class tt__VideoAnalyticsConfiguration : public tt__ConfigurationEntity
{ public:
    tt__AnalyticsEngineConfiguration* AnalyticsEngineConfiguration 0;
    tt__RuleEngineConfiguration*      RuleEngineConfiguration      0;
    std::vector<xsd__anyType>         __any                        0;
    @ xsd__anyAttribute               __anyAttribute;
};

class tt__PTZFilter
{ public:
    bool                Status   1;
    bool                Position 1;
    @ xsd__anyAttribute __anyAttribute;
};

/// Which events go into a metadata stream.
class tt__EventSubscription
{ public:
    wsnt__FilterType*           Filter 0;
    class _tt__EventSubscription_SubscriptionPolicy
    { public:
        std::vector<xsd__anyType> __any 0;
    }*                          SubscriptionPolicy 0;
    std::vector<xsd__anyType>   __any              0;
    @ xsd__anyAttribute         __anyAttribute;
};

class tt__MetadataConfiguration : public tt__ConfigurationEntity
{ public:
    tt__PTZFilter*                      PTZStatus                    0;
    tt__EventSubscription*              Events                       0;
    bool*                               Analytics                    0;
    tt__MulticastConfiguration*         Multicast                    1;
    xsd__duration                       SessionTimeout               1;
    std::vector<xsd__anyType>           __any                        0;
    tt__AnalyticsEngineConfiguration*   AnalyticsEngineConfiguration 0;
    tt__MetadataConfigurationExtension* Extension                    0;
    @ std::string*                      CompressionType              0;
    @ bool*                             GeoLocation                  0;
    @ bool*                             ShapePolygon                 0;
    @ xsd__anyAttribute                 __anyAttribute;
};

class tt__PTZStatusFilterOptions
{ public:
    bool                                 PanTiltStatusSupported   1;
    bool                                 ZoomStatusSupported      1;
    std::vector<xsd__anyType>            __any                    0;
    bool*                                PanTiltPositionSupported 0;
    bool*                                ZoomPositionSupported    0;
    tt__PTZStatusFilterOptionsExtension* Extension                0;
    @ xsd__anyAttribute                  __anyAttribute;
};

class tt__MetadataConfigurationOptions
{ public:
    tt__PTZStatusFilterOptions*                PTZStatusFilterOptions 1;
    std::vector<xsd__anyType>                  __any                  0;
    tt__MetadataConfigurationOptionsExtension* Extension              0;
    @ bool*                                    GeoLocation            0;
    @ int*                                     MaxContentFilterSize   0;
    @ xsd__anyAttribute                        __anyAttribute;
};

// Profiles and addresses

/// A media profile of the ver10 media service.
class tt__Profile
{ public:
    tt__Name                         Name                        1;
    tt__VideoSourceConfiguration*    VideoSourceConfiguration    0;
    tt__AudioSourceConfiguration*    AudioSourceConfiguration    0;
    tt__VideoEncoderConfiguration*   VideoEncoderConfiguration   0;
    tt__AudioEncoderConfiguration*   AudioEncoderConfiguration   0;
    tt__VideoAnalyticsConfiguration* VideoAnalyticsConfiguration 0;
    tt__PTZConfiguration*            PTZConfiguration            0;
    tt__MetadataConfiguration*       MetadataConfiguration       0;
    tt__ProfileExtension*            Extension                   0;
    @ tt__ReferenceToken             token                       1;
    @ bool*                          fixed                       0;
    @ xsd__anyAttribute              __anyAttribute;
};

enum tt__StreamType
{
    tt__StreamType__RTP_Unicast,
    tt__StreamType__RTP_Multicast
};

enum tt__TransportProtocol
{
    tt__TransportProtocol__UDP,
    tt__TransportProtocol__TCP,
    tt__TransportProtocol__RTSP,
    tt__TransportProtocol__HTTP
};

class tt__Transport
{ public:
    enum tt__TransportProtocol Protocol 1;
    tt__Transport*             Tunnel   0;
};

class tt__StreamSetup
{ public:
    enum tt__StreamType       Stream    1;
    tt__Transport*            Transport 1;
    std::vector<xsd__anyType> __any     0;
    @ xsd__anyAttribute       __anyAttribute;
};

/// The address of a stream or a snapshot.
class tt__MediaUri
{ public:
    xsd__anyURI               Uri                 1;
    bool                      InvalidAfterConnect 1;
    bool                      InvalidAfterReboot  1;
    xsd__duration             Timeout             1;
    std::vector<xsd__anyType> __any               0;
    @ xsd__anyAttribute       __anyAttribute;
};
