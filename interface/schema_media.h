// Part of schema.h: sources, configurations, options and profiles of the media services.

// Video sources

class tt__VideoResolution
{ public:
    int Width  1;
    int Height 1;
};

class tt__VideoSource : public tt__DeviceEntity
{ public:
    float                Framerate  1;
    tt__VideoResolution* Resolution 1;
};

class tt__VideoSourceConfiguration : public tt__ConfigurationEntity
{ public:
    tt__ReferenceToken SourceToken 1;
    tt__IntRectangle*  Bounds      1;
};

class tt__VideoSourceConfigurationOptions
{ public:
    tt__IntRectangleRange*          BoundsRange                1;
    std::vector<tt__ReferenceToken> VideoSourceTokensAvailable 1;
};

// Multicast

enum tt__IPType
{
    tt__IPType__IPv4,
    tt__IPType__IPv6
};

class tt__IPAddress
{ public:
    enum tt__IPType Type 1;
};

class tt__MulticastConfiguration
{ public:
    tt__IPAddress* Address   1;
    int            Port      1;
    int            TTL       1;
    bool           AutoStart 1;
};

// Video encoders as the ver10 media service describes them

enum tt__VideoEncoding
{
    tt__VideoEncoding__JPEG,
    tt__VideoEncoding__MPEG4,
    tt__VideoEncoding__H264
};

class tt__VideoEncoderConfiguration : public tt__ConfigurationEntity
{ public:
    enum tt__VideoEncoding      Encoding       1;
    tt__VideoResolution*        Resolution     1;
    float                       Quality        1;
    tt__MulticastConfiguration* Multicast      1;
    xsd__duration               SessionTimeout 1;
};

/// The schema requires GovLengthRange, FrameRateRange and EncodingIntervalRange as well; this device passes streams through
/// and can set none of them.
class tt__H264Options
{ public:
    std::vector<tt__VideoResolution*> ResolutionsAvailable 1;
};

class tt__VideoEncoderConfigurationOptions
{ public:
    tt__IntRange*    QualityRange 1;
    tt__H264Options* H264         0;
};

// Video encoders as the Media2 service describes them

class tt__VideoResolution2
{ public:
    int Width  1;
    int Height 1;
};

class tt__VideoRateControl2
{ public:
    float FrameRateLimit 1;
    int   BitrateLimit   1;
};

class tt__VideoEncoder2Configuration : public tt__ConfigurationEntity
{ public:
    std::string            Encoding    1;
    tt__VideoResolution2*  Resolution  1;
    tt__VideoRateControl2* RateControl 0;
    float                  Quality     1;
};

class tt__VideoEncoder2ConfigurationOptions
{ public:
    std::string                        Encoding                     1;
    tt__FloatRange*                    QualityRange                 1;
    std::vector<tt__VideoResolution2*> ResolutionsAvailable         1;
    tt__IntRange*                      BitrateRange                 1;
};

// Analytics and metadata

/// The schema requires the configurations of the analytics and the rule engine as well; the analytics service reports
/// modules and rules.
class tt__VideoAnalyticsConfiguration : public tt__ConfigurationEntity
{ public:
};

class tt__MetadataConfiguration : public tt__ConfigurationEntity
{ public:
    bool*                       Analytics      0;
    tt__MulticastConfiguration* Multicast      1;
    xsd__duration               SessionTimeout 1;
};

class tt__PTZStatusFilterOptions
{ public:
    bool PanTiltStatusSupported 1;
    bool ZoomStatusSupported    1;
};

class tt__MetadataConfigurationOptions
{ public:
    tt__PTZStatusFilterOptions* PTZStatusFilterOptions 1;
};

// Profiles and addresses

/// A media profile of the ver10 media service.
class tt__Profile
{ public:
    tt__Name                         Name                        1;
    tt__VideoSourceConfiguration*    VideoSourceConfiguration    0;
    tt__VideoEncoderConfiguration*   VideoEncoderConfiguration   0;
    tt__VideoAnalyticsConfiguration* VideoAnalyticsConfiguration 0;
    tt__MetadataConfiguration*       MetadataConfiguration       0;
    @ tt__ReferenceToken             token                       1;
    @ bool*                          fixed                       0;
};

/// The address of a stream or a snapshot.
class tt__MediaUri
{ public:
    xsd__anyURI   Uri                 1;
    bool          InvalidAfterConnect 1;
    bool          InvalidAfterReboot  1;
    xsd__duration Timeout             1;
};
