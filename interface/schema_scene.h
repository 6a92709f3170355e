// Part of schema.h: the scene description that the analytics service gives as a sample.
// Source: ONVIF Analytics Service Specification, metadatastream.xsd.
//
// tt:Appearance's HumanFace and HumanBody are left out: each has a namespace of its own, which no other message needs.

typedef tt__Unused tt__PTZStatus;
typedef tt__Unused tt__AppearanceExtension, tt__BehaviourExtension, tt__ClassDescriptorExtension, tt__FrameExtension,
    tt__ObjectExtension, tt__ObjectTreeExtension, tt__ShapeDescriptorExtension, tt__TransformationExtension;

// Geometry

class tt__Vector
{ public:
    @ float* x 0;
    @ float* y 0;
};

class tt__Rectangle
{ public:
    @ float* bottom 0;
    @ float* top    0;
    @ float* right  0;
    @ float* left   0;
};

class tt__Polygon
{ public:
    std::vector<tt__Vector*> Point 3;
};

/// From the coordinates of the frame or object to those of its surroundings.
class tt__Transformation
{ public:
    tt__Vector*                  Translate 0;
    tt__Vector*                  Scale     0;
    tt__TransformationExtension* Extension 0;
    @ xsd__anyAttribute          __anyAttribute;
};

class tt__ShapeDescriptor
{ public:
    tt__Rectangle*                BoundingBox     1;
    tt__Vector*                   CenterOfGravity 1;
    std::vector<tt__Polygon*>     Polygon         0;
    tt__ShapeDescriptorExtension* Extension       0;
    std::vector<xsd__anyType>     __any           0;
    @ xsd__anyAttribute           __anyAttribute;
};

class tt__GeoLocation
{ public:
    std::vector<xsd__anyType> __any     0;
    @ double*                 lon       0;
    @ double*                 lat       0;
    @ float*                  elevation 0;
    @ xsd__anyAttribute       __anyAttribute;
};

class tt__GeoOrientation
{ public:
    std::vector<xsd__anyType> __any 0;
    @ float*                  roll  0;
    @ float*                  pitch 0;
    @ float*                  yaw   0;
    @ xsd__anyAttribute       __anyAttribute;
};

class tt__SphericalCoordinate
{ public:
    std::vector<xsd__anyType> __any          0;
    @ float*                  Distance       0;
    @ float*                  ElevationAngle 0;
    @ float*                  AzimuthAngle   0;
};

// Colour

class tt__Color
{ public:
    @ float             X          1;
    @ float             Y          1;
    @ float             Z          1;
    @ xsd__anyURI*      Colorspace 0;
    @ float*            Likelihood 0;
    @ xsd__anyAttribute __anyAttribute;
};

class tt__ColorCovariance
{ public:
    @ float             XX         1;
    @ float             YY         1;
    @ float             ZZ         1;
    @ float*            XY         0;
    @ float*            XZ         0;
    @ float*            YZ         0;
    @ xsd__anyURI*      Colorspace 0;
    @ xsd__anyAttribute __anyAttribute;
};

class tt__ColorDescriptor
{ public:
    std::vector<
    class _tt__ColorDescriptor_ColorCluster
    { public:
        tt__Color*                Color      1;
        float*                    Weight     0;
        tt__ColorCovariance*      Covariance 0;
        std::vector<xsd__anyType> __any      0;
        @ xsd__anyAttribute       __anyAttribute;
    }>                        ColorCluster 0;
    xsd__anyType*             Extension    0;
    std::vector<xsd__anyType> __any        0;
    @ xsd__anyAttribute       __anyAttribute;
};

// What an object is

class tt__StringLikelihood
{ public:
    std::string         __item;
    @ float*            Likelihood 0;
    @ xsd__anyAttribute __anyAttribute;
};

enum tt__ClassType
{
    tt__ClassType__Animal,
    tt__ClassType__Face,
    tt__ClassType__Human,
    tt__ClassType__Vehical,
    tt__ClassType__Other
};

class tt__ClassDescriptor
{ public:
    std::vector<
    class _tt__ClassDescriptor_ClassCandidate
    { public:
        enum tt__ClassType        Type       1;
        float                     Likelihood 1;
        std::vector<xsd__anyType> __any      0;
    }>                                 ClassCandidate 0;
    tt__ClassDescriptorExtension*      Extension      0;
    std::vector<tt__StringLikelihood*> Type           0;
    std::vector<xsd__anyType>          __any          0;
};

class tt__VehicleInfo
{ public:
    tt__StringLikelihood*     Type  1;
    tt__StringLikelihood*     Brand 0;
    tt__StringLikelihood*     Model 0;
    std::vector<xsd__anyType> __any 0;
    @ xsd__anyAttribute       __anyAttribute;
};

class tt__LicensePlateInfo
{ public:
    tt__StringLikelihood*     PlateNumber   1;
    tt__StringLikelihood*     PlateType     0;
    tt__StringLikelihood*     CountryCode   0;
    tt__StringLikelihood*     IssuingEntity 0;
    std::vector<xsd__anyType> __any         0;
    @ xsd__anyAttribute       __anyAttribute;
};

class tt__BarcodeInfo
{ public:
    tt__StringLikelihood*     Data  1;
    tt__StringLikelihood*     Type  0;
    float*                    PPM   0;
    std::vector<xsd__anyType> __any 0;
    @ xsd__anyAttribute       __anyAttribute;
};

class tt__Appearance
{ public:
    tt__Transformation*           Transformation      0;
    tt__ShapeDescriptor*          Shape               0;
    tt__ColorDescriptor*          Color               0;
    tt__ClassDescriptor*          Class               0;
    tt__AppearanceExtension*      Extension           0;
    tt__GeoLocation*              GeoLocation         0;
    std::vector<tt__VehicleInfo*> VehicleInfo         0;
    tt__LicensePlateInfo*         LicensePlateInfo    0;
    xsd__anyURI*                  ImageRef            0;
    xsd__base64Binary*            Image               0;
    tt__BarcodeInfo*              BarcodeInfo         0;
    tt__SphericalCoordinate*      SphericalCoordinate 0;
    std::vector<xsd__anyType>     __any               0;
    @ xsd__anyAttribute           __anyAttribute;
};

/// What an object does.
class tt__Behaviour
{ public:
    class _tt__Behaviour_Removed
    { public:
        std::vector<xsd__anyType> __any 0;
    }*                        Removed   0;
    class _tt__Behaviour_Idle
    { public:
        std::vector<xsd__anyType> __any 0;
    }*                        Idle      0;
    tt__BehaviourExtension*   Extension 0;
    float*                    Speed     0;
    tt__GeoOrientation*       Direction 0;
    std::vector<xsd__anyType> __any     0;
    @ xsd__anyAttribute       __anyAttribute;
};

// Objects and frames

class tt__ObjectId
{ public:
    @ xsd__integer* ObjectId 0;
};

class tt__Object : public tt__ObjectId
{ public:
    tt__Appearance*           Appearance 0;
    tt__Behaviour*            Behaviour  0;
    tt__ObjectExtension*      Extension  0;
    std::vector<xsd__anyType> __any      0;
    @ xsd__integer*           Parent     0;
    @ xsd__anyAttribute       __anyAttribute;
};

class tt__Rename
{ public:
    tt__ObjectId* from 1;
    tt__ObjectId* to   1;
};

class tt__Split
{ public:
    tt__ObjectId*              from 1;
    std::vector<tt__ObjectId*> to   2;
};

class tt__Merge
{ public:
    std::vector<tt__ObjectId*> from 2;
    tt__ObjectId*              to   1;
};

/// What became of the objects of earlier frames.
class tt__ObjectTree
{ public:
    std::vector<tt__Rename*>   Rename    0;
    std::vector<tt__Split*>    Split     0;
    std::vector<tt__Merge*>    Merge     0;
    std::vector<tt__ObjectId*> Delete    0;
    tt__ObjectTreeExtension*   Extension 0;
    std::vector<xsd__anyType>  __any     0;
    @ xsd__anyAttribute        __anyAttribute;
};

/// The objects of one video frame.
class tt__Frame
{ public:
    tt__PTZStatus*            PTZStatus      0;
    tt__Transformation*       Transformation 0;
    std::vector<tt__Object*>  Object         0;
    tt__ObjectTree*           ObjectTree     0;
    tt__FrameExtension*       Extension      0;
    xsd__anyURI*              SceneImageRef  0;
    xsd__base64Binary*        SceneImage     0;
    std::vector<xsd__anyType> __any          0;
    @ time_t                  UtcTime        1;
    @ std::string*            Colorspace     0;
    @ std::string*            Source         0;
    @ xsd__anyAttribute       __anyAttribute;
};
