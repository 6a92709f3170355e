// Part of schema.h: the scene description that the analytics service gives as a sample.
// Source: ONVIF Analytics Service Specification, metadatastream.xsd.
//
// tt:Appearance's HumanFace and HumanBody are left out: each has a namespace of its own, which no other message needs.

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

class tt__ShapeDescriptor
{ public:
    tt__Rectangle* BoundingBox     1;
    tt__Vector*    CenterOfGravity 1;
};

// Colour

class tt__Color
{ public:
    @ float        X          1;
    @ float        Y          1;
    @ float        Z          1;
    @ xsd__anyURI* Colorspace 0;
    @ float*       Likelihood 0;
};

class tt__ColorDescriptor
{ public:
    std::vector<
    class _tt__ColorDescriptor_ColorCluster
    { public:
        tt__Color*                Color      1;
    }>                        ColorCluster 0;
    xsd__anyType*             Extension    0;
};

// What an object is

class tt__StringLikelihood
{ public:
    std::string __item;
    @ float*    Likelihood 0;
};

class tt__ClassDescriptor
{ public:
    std::vector<tt__StringLikelihood*> Type 0;
};

class tt__Appearance
{ public:
    tt__ShapeDescriptor* Shape 0;
    tt__ColorDescriptor* Color 0;
    tt__ClassDescriptor* Class 0;
};

// Objects and frames

class tt__ObjectId
{ public:
    @ xsd__integer* ObjectId 0;
};

class tt__Object : public tt__ObjectId
{ public:
    tt__Appearance* Appearance 0;
};

/// The objects of one video frame.
class tt__Frame
{ public:
    std::vector<tt__Object*>  Object         0;
    @ time_t                  UtcTime        1;
    @ std::string*            Colorspace     0;
    @ std::string*            Source         0;
};
